#include "scenario/Options.h"

Options::Options(const Section &stRoot) {
    const Section stSettings = stRoot.Table("options");
    for (const Row &stRow : astRows) {
        m_au32AtStart[stRow.eBit] = static_cast<uint32_t>(
            stSettings.Integer(stRow.pcKey, 0, stRow.u32Most, stRow.u32Default));
    }
}
