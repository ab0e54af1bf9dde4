#include "model/Content.h"

#include <utility>

#include "model/OptionalContent.h"

namespace vyr::inspect {

COptionalContent::COptionalContent() = default;

COptionalContent::COptionalContent(SContent content) : m_content(std::make_unique<SContent>(std::move(content))) {}

COptionalContent::COptionalContent(COptionalContent&& other) noexcept = default;

COptionalContent& COptionalContent::operator=(COptionalContent&& other) noexcept = default;

COptionalContent::~COptionalContent() = default;

std::string COptionalContent::Shown() const
{
    return m_content ? m_content->headline + m_content->text : std::string();
}

SContent& COptionalContent::emplace()
{
    m_content = std::make_unique<SContent>();
    return *m_content;
}

void COptionalContent::reset()
{
    m_content.reset();
}

}  // namespace vyr::inspect
