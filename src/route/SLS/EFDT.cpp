#include "route/SLS/EFDT.h"

#include <cstring>
#include <memory>
#include <utility>

#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

void g_CbRemoveFile(void* /*context*/, void* element)
{
    delete static_cast<SFDTFile*>(element);
}

/// The tokens of a text, set apart by single spaces.
std::list<std::string> Split(const char* text)
{
    std::list<std::string> tokens;
    while (*text) {
        const char* space = std::strchr(text, ' ');
        tokens.emplace_back(text, space ? space : text + std::strlen(text));
        text = space ? space + 1 : text + std::strlen(text);
    }
    return tokens;
}

}  // namespace

SFDTGlobal::SFDTGlobal()
    : expires(-1), contentType(nullptr), contentEncoding(nullptr), efdtVersion(-1), files(g_CbRemoveFile, nullptr)
{
}

SFDTGlobal::~SFDTGlobal()
{
    delete[] contentType;
    delete[] contentEncoding;
}

SEFDTInfo::SEFDTInfo()
    : tsi(0xFFFFFFFF),
      idRef(nullptr),
      version(0xFFFFFFFF),
      maxExpiresDelta(0xFFFFFFFF),
      maxTransportSize(0xFFFFFFFF),
      fileTemplate(nullptr),
      fdtGlobal(nullptr)
{
}

SEFDTInfo::~SEFDTInfo()
{
    delete[] idRef;
    delete[] fileTemplate;
    delete fdtGlobal;
}

struct CEFDT::SState : vyr::SHandlers {
    std::unique_ptr<SEFDTInfo> info;
    SEFDTInfoCallback callback{};
};

CEFDT::CEFDT() : m(nullptr)
{
    t_keepsDocument = false;
}

CEFDT::~CEFDT() = default;

bool CEFDT::Create()
{
    return vyr::CreateXmlParser(m, "[CEFDT::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CEFDT::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CEFDT> k_handlers[] = {
        {"FDT-Instance", sm_CbFDTParameters},
        {"FDTParameters", sm_CbFDTParameters},
        {"File", sm_CbFile},
        {"FileTemplate", sm_CbFileTemplate},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CEFDT::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CEFDT::Destroy]", VYR_HERE);
}

bool CEFDT::SetCallback(const SEFDTInfoCallback* callback)
{
    return vyr::SetCallback(m, callback, VYR_HERE);
}

SEFDTInfo* CEFDT::GetEFDTInfo() const
{
    return VYR_ASSERT(m, "m") ? m->info.get() : nullptr;
}

bool CEFDT::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    const auto number = [root](const char* name) {
        return static_cast<unsigned int>(CNodeText::Attribute(root, name).Int(-1));
    };
    auto info = std::make_unique<SEFDTInfo>();
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] Parse EFDT START !!!");
    info->tsi = number("tsi");
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] tsi[%d]", static_cast<int>(info->tsi));
    info->idRef = vyr::Allocated(t_xml.PropStr(root, "idRef", nullptr));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] idRef[%s]", info->idRef ? info->idRef : "");
    info->version = number("version");
    info->maxExpiresDelta = number("maxExpiresDelta");
    info->maxTransportSize = number("maxTransportSize");
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] version[%d], expiresDelta[%d], transSize[%d]",
            static_cast<int>(info->version), static_cast<int>(info->maxExpiresDelta),
            static_cast<int>(info->maxTransportSize));
    std::unique_ptr<SEFDTInfo> before = std::exchange(m->info, std::move(info));
    try {
        vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, "[CEFDT::m_ProcessParseEFDT] %s",
                              VYR_HERE);
    } catch (...) {
        m->info = std::move(before);
        throw;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] Parse EFDT END !!!");
    if (m->callback.fn) {
        m->callback.fn(m->callback.context, m->info.get());
    }
    return true;
}

void CEFDT::sm_CbFDTParameters(CEFDT* efdt, void* node)
{
    SEFDTInfo& info = *efdt->m->info;
    auto global = std::make_unique<SFDTGlobal>();
    delete info.fdtGlobal;
    info.fdtGlobal = global.release();
    efdt->m_OnFDTParameters(node);
}

void CEFDT::m_OnFDTParameters(void* node)
{
    SFDTGlobal& global = *m->info->fdtGlobal;
    const auto text = [this, node](const char* name) -> char* {
        return CNodeText::Attribute(node, name).Found() ? vyr::Allocated(t_xml.PropStr(node, name, nullptr)) : nullptr;
    };
    global.expires = CNodeText::Attribute(node, "Expires").LLong(-1);
    global.contentType = text("Content-Type");
    if (!global.contentType) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] Content-Type not exist!!");
    }
    global.contentEncoding = text("Content-Encoding");
    if (!global.contentEncoding) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] Content-Encoding not exist!!");
    }
    const CNodeText ids = CNodeText::Attribute(node, "appContextIdList");
    if (ids.Found()) {
        global.appContextIdList = Split(ids.Text());
        for (const std::string& id : global.appContextIdList) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] Add afdt:appContextIdList:%s", id.c_str());
        }
    } else {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] afdt:appContextIdList not exist!!");
    }
    const CNodeText version = CNodeText::Attribute(node, "efdtVersion");
    global.efdtVersion = version.Int(-1);
    if (!version.Found()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] afdt:efdtVersion not exist!!");
    }
    // An instance inside this one takes its place, so that `global` is not to be used below.
    vyr::DispatchChildren(this, m->handlers, node, vyr::LOG_HANDLED_CHILDREN, "[CFDTParameters::m_OnFDTParameters] %s",
                          VYR_HERE);
}

void CEFDT::sm_CbFile(CEFDT* efdt, void* node)
{
    SFDTGlobal* global = efdt->m->info->fdtGlobal;
    if (!global) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] no FDT instance before the file");
        return;
    }
    auto file = std::make_unique<SFDTFile>();
    const bool located = CNodeText::Attribute(node, "Content-Location").CopyTo(file->contentLocation);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] location[%s], exist[%d]", file->contentLocation.c_str(), located);
    file->toi = static_cast<unsigned long long>(CNodeText::Attribute(node, "TOI").LLong(-1));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] toi[%llu]", file->toi);
    const CNodeText transferLength = CNodeText::Attribute(node, "Transfer-Length");
    file->transferLength = transferLength.LLong(-1);
    file->contentLength = CNodeText::Attribute(node, "Content-Length").LLong(-1);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] transferLen[%llu], exist[%d], contentLen[%llu]",
            static_cast<unsigned long long>(file->transferLength), transferLength.Found(),
            static_cast<unsigned long long>(file->contentLength));
    const CNodeText ids = CNodeText::Attribute(node, "appContextIdList");
    if (ids.Found()) {
        file->appContextIdList = Split(ids.Text());
        for (const std::string& id : file->appContextIdList) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] Add File:appContextIdList [%s]", id.c_str());
        }
    }
    const bool typed = CNodeText::Attribute(node, "Content-Type").CopyTo(file->contentType);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] contentType[%s], exist[%d]", file->contentType.c_str(), typed);
    const bool encoded = CNodeText::Attribute(node, "Content-Encoding").CopyTo(file->contentEncoding);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] contentEncoding = [%s], exist = %d", file->contentEncoding.c_str(),
            encoded);
    vyr::Append(global->files, std::move(file));
}

void CEFDT::sm_CbFileTemplate(CEFDT* efdt, void* node)
{
    SEFDTInfo& info = *efdt->m->info;
    char* text = vyr::Allocated(efdt->t_xml.Content(node, nullptr));
    delete[] info.fileTemplate;
    info.fileTemplate = text;
}
