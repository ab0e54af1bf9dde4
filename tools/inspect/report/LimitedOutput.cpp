#include "report/LimitedOutput.h"

namespace vyr::inspect {

std::size_t CLimitedOutput::Room() const
{
    const std::size_t told = m_untold.empty() ? 0 : k_least;
    const std::size_t room = m_allowance.Room();
    return room > told ? room - told : 0;
}

bool CLimitedOutput::Begin(const char* kind)
{
    if (Room() == 0) {
        m_LeaveOut(kind);
        return false;
    }
    return true;
}

void CLimitedOutput::Write(const char* kind, const std::string& record)
{
    if (record.size() > Room()) {
        m_LeaveOut(kind);
        return;
    }
    m_Tell();
    m_allowance.Spend(record.size());
    m_output.Write(record);
}

void CLimitedOutput::Always(const std::string& record)
{
    m_Tell();
    m_output.Write(record);
}

void CLimitedOutput::m_LeaveOut(const char* kind)
{
    ++m_untold[kind];
    ++m_all[kind];
}

void CLimitedOutput::m_Tell()
{
    if (!m_untold.empty()) {
        const std::string told = m_tell(m_untold);
        m_untold.clear();
        m_allowance.Spend(told.size());
        m_output.Write(told);
    }
}

}  // namespace vyr::inspect
