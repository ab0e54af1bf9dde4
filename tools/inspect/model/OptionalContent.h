#pragma once

#include <memory>

#include "base/JsonFwd.h"

namespace vyr::inspect {

struct SContent;

/// A content, or none, for those who need not know what is in one: JSON is expensive to compile. Its copies share it.
class COptionalContent {
  public:
    COptionalContent();
    COptionalContent(SContent content);  // NOLINT: a content is one

    explicit operator bool() const { return m_content != nullptr; }
    bool has_value() const { return m_content != nullptr; }
    SContent& operator*() { return *m_content; }
    const SContent& operator*() const { return *m_content; }
    SContent* operator->() { return m_content.get(); }
    const SContent* operator->() const { return m_content.get(); }
    /// Its JSON, which keeps the content, to compare it with another one; null: there is none, or it is not whole.
    std::shared_ptr<const TJson> Whole() const;
    SContent& emplace();  ///< an empty one
    void reset();

  private:
    std::shared_ptr<SContent> m_content;
};

}  // namespace vyr::inspect
