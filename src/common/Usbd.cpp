#include "common/Usbd.h"

#include "common/ServiceLinkage.h"
#include "common/XmlParser.h"

CUsbd::~CUsbd() = default;

/// What every getter asserts, for the class that the object is of.
bool CUsbd::m_Created(const char* function) const
{
    return m_Usbd() || vyr::AssertFailed(t_Kind().Here(function), "m");
}

const char* CUsbd::GlobalServiceId() const
{
    return m_Created(__func__) ? m_Usbd()->globalServiceId : nullptr;
}

unsigned short CUsbd::ServiceId() const
{
    return m_Created(__func__) ? m_Usbd()->serviceId : 0;
}

bool CUsbd::ServiceStatus() const
{
    return m_Created(__func__) && m_Usbd()->serviceStatus;
}

int CUsbd::LinkServiceId() const
{
    return !m_Created(__func__) ? 0 : m_Linkage() ? m_Linkage()->LinkServiceId() : -1;
}

int CUsbd::ServiceCategory() const
{
    return !m_Created(__func__) ? 0 : m_Linkage() ? m_Linkage()->ServiceCategory() : -1;
}

int CUsbd::LinkageType() const
{
    return !m_Created(__func__) ? 0 : m_Linkage() ? m_Linkage()->LinkageType() : -1;
}

const char* CUsbd::ActivationTime() const
{
    return m_Created(__func__) && m_Linkage() ? m_Linkage()->ActivationTime() : nullptr;
}

const char* CUsbd::DeActivationTime() const
{
    return m_Created(__func__) && m_Linkage() ? m_Linkage()->DeActivationTime() : nullptr;
}
