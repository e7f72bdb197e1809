#include "Files.h"

#include <cerrno>
#include <cstdio>

namespace {

bool gbInRun = false;
std::string_view gstrBytes;

} // namespace

ModemFile::ModemFile(std::string_view strBytes) {
    gbInRun = true;
    gstrBytes = strBytes;
}

ModemFile::~ModemFile() { gbInRun = false; }

extern "C" FILE *__real_fopen(const char *pcPath, const char *pcMode);
extern "C" FILE *__wrap_fopen(const char *pcPath, const char *pcMode);
FILE *__wrap_fopen(const char *pcPath, const char *pcMode) {
    if (!gbInRun) {
        return __real_fopen(pcPath, pcMode);
    }
    if (pcMode[0] != 'r') {
        return __real_fopen("/dev/null", pcMode);
    }
    if (gstrBytes.empty()) {
        errno = ENOENT;
        return nullptr;
    }
    return fmemopen(const_cast<char *>(gstrBytes.data()), gstrBytes.size(), pcMode);
}

extern "C" int __real_rename(const char *pcOld, const char *pcNew);
extern "C" int __wrap_rename(const char *pcOld, const char *pcNew);
int __wrap_rename(const char *pcOld, const char *pcNew) {
    return gbInRun ? 0 : __real_rename(pcOld, pcNew);
}
