// What is wrong with something that whoever steers the modem asks for: one line.
#ifndef REFUSAL_H
#define REFUSAL_H

#include <exception>
#include <string>

class Refusal : public std::exception {
  public:
    explicit Refusal(std::string strReason) : m_strReason(std::move(strReason)) {}
    const char *what() const noexcept override { return m_strReason.c_str(); }

  private:
    std::string m_strReason;
};

#endif
