#pragma once

namespace vyr::xml {

/// While it lives libxml2 reports the calling thread's errors to XmlError; afterwards to whom it did before.
class CErrorsToLog {
  public:
    CErrorsToLog();
    ~CErrorsToLog();
    CErrorsToLog(const CErrorsToLog&) = delete;
    CErrorsToLog& operator=(const CErrorsToLog&) = delete;

  private:
    void (*m_handler)(void* context, const char* format, ...);
    void* m_context;
};

}  // namespace vyr::xml
