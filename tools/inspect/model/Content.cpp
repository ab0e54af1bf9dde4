#include "model/Content.h"

#include <utility>

#include "model/OptionalContent.h"

namespace vyr::inspect {

COptionalContent::COptionalContent() = default;

COptionalContent::COptionalContent(SContent content) : m_content(std::make_shared<SContent>(std::move(content))) {}

std::shared_ptr<const TJson> COptionalContent::Whole() const
{
    return m_content && m_content->whole ? std::shared_ptr<const TJson>(m_content, &m_content->json) : nullptr;
}

SContent& COptionalContent::emplace()
{
    m_content = std::make_shared<SContent>();
    return *m_content;
}

void COptionalContent::reset()
{
    m_content.reset();
}

}  // namespace vyr::inspect
