#pragma once

#include <memory>
#include <string>

namespace vyr::inspect {

struct SContent;

/// A content, or none, for those who need not know what is in one: JSON is expensive to compile.
class COptionalContent {
  public:
    COptionalContent();
    COptionalContent(SContent content);  // NOLINT: a content is one
    COptionalContent(COptionalContent&& other) noexcept;
    COptionalContent& operator=(COptionalContent&& other) noexcept;
    ~COptionalContent();

    explicit operator bool() const { return m_content != nullptr; }
    bool has_value() const { return m_content != nullptr; }
    SContent& operator*() { return *m_content; }
    const SContent& operator*() const { return *m_content; }
    SContent* operator->() { return m_content.get(); }
    const SContent* operator->() const { return m_content.get(); }
    /// Its headline and its text; empty: there is none.
    std::string Shown() const;
    SContent& emplace();  ///< an empty one
    void reset();

  private:
    std::unique_ptr<SContent> m_content;
};

}  // namespace vyr::inspect
