#include "route/SLS/EFDT.h"

#include <cstring>
#include <memory>
#include <utility>

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

/// Each takes 64 bytes, and a document type can give the same list to thousands of files.
thread_local vyr::CBudget t_contexts(65536, "application contexts");

/// The tokens of a text, set apart by single spaces.
std::list<std::string> Split(const char* text)
{
    std::list<std::string> tokens;
    while (*text && t_contexts.Take()) {
        const char* space = std::strchr(text, ' ');
        tokens.emplace_back(text, space ? space : text + std::strlen(text));
        text = space ? space + 1 : text + std::strlen(text);
    }
    return tokens;
}

}  // namespace

SFDTGlobal::~SFDTGlobal()
{
    delete[] contentType;
    delete[] contentEncoding;
}

SEFDTInfo::~SEFDTInfo()
{
    delete[] idRef;
    delete[] fileTemplate;
    delete fdtGlobal;
}

namespace {

struct SState : vyr::SXmlState {
    std::unique_ptr<SEFDTInfo> info;
    SEFDTInfoCallback callback{};

    bool m_ProcessParse(void* root) override;
    void m_OnFDTParameters(void* node);
};

void sm_CbFDTParameters(SState* m, void* node)
{
    SEFDTInfo& info = *m->info;
    auto global = std::make_unique<SFDTGlobal>();
    delete info.fdtGlobal;
    info.fdtGlobal = global.release();
    m->m_OnFDTParameters(node);
}

void sm_CbFile(SState* m, void* node)
{
    SFDTGlobal* global = m->info->fdtGlobal;
    if (!global) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] no FDT instance before the file");
        return;
    }
    auto file = std::make_unique<SFDTFile>();
    const bool located = vyr::ReadAttribute(node, "Content-Location", file->contentLocation);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] location[%s], exist[%d]", file->contentLocation.c_str(), located);
    vyr::ReadAttribute(node, "TOI", file->toi, -1);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] toi[%llu]", file->toi);
    const CNodeText transferLength = CNodeText::Attribute(node, "Transfer-Length");
    file->transferLength = transferLength.LLong(-1);
    vyr::ReadAttribute(node, "Content-Length", file->contentLength, -1);
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
    const bool typed = vyr::ReadAttribute(node, "Content-Type", file->contentType);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] contentType[%s], exist[%d]", file->contentType.c_str(), typed);
    const bool encoded = vyr::ReadAttribute(node, "Content-Encoding", file->contentEncoding);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::sm_CbFile] contentEncoding = [%s], exist = %d", file->contentEncoding.c_str(),
            encoded);
    global->files.Append(std::move(file));
}

void sm_CbFileTemplate(SState* m, void* node)
{
    std::unique_ptr<char[]> text = vyr::NewText(CNodeText::Content(node));
    delete[] m->info->fileTemplate;
    m->info->fileTemplate = text.release();
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"FDT-Instance", sm_CbFDTParameters},
    {"FDTParameters", sm_CbFDTParameters},
    {"File", sm_CbFile},
    {"FileTemplate", sm_CbFileTemplate},
};

bool SState::m_ProcessParse(void* root)
{
    auto fresh = std::make_unique<SEFDTInfo>();
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] Parse EFDT START !!!");
    vyr::ReadAttribute(root, "tsi", fresh->tsi, -1);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] tsi[%d]", static_cast<int>(fresh->tsi));
    fresh->idRef = vyr::NewText(CNodeText::Attribute(root, "idRef")).release();
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] idRef[%s]", fresh->idRef);
    vyr::ReadAttribute(root, "version", fresh->version, -1);
    vyr::ReadAttribute(root, "maxExpiresDelta", fresh->maxExpiresDelta, -1);
    vyr::ReadAttribute(root, "maxTransportSize", fresh->maxTransportSize, -1);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] version[%d], expiresDelta[%d], transSize[%d]",
            static_cast<int>(fresh->version), static_cast<int>(fresh->maxExpiresDelta),
            static_cast<int>(fresh->maxTransportSize));
    std::unique_ptr<SEFDTInfo> before = std::exchange(info, std::move(fresh));
    try {
        vyr::DispatchChildren(this, k_handlers, root, "[CEFDT::m_ProcessParseEFDT] %s");
    } catch (...) {
        info = std::move(before);
        throw;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CEFDT::m_ProcessParseEFDT] Parse EFDT END !!!");
    if (callback.fn) {
        callback.fn(callback.context, info.get());
    }
    return true;
}

void SState::m_OnFDTParameters(void* node)
{
    SFDTGlobal& global = *info->fdtGlobal;
    const auto text = [node](const char* name) {
        std::unique_ptr<char[]> copy;
        vyr::ReadAttribute(node, name, copy);
        return copy.release();
    };
    vyr::ReadAttribute(node, "Expires", global.expires, -1);
    global.contentType = text("Content-Type");
    if (!global.contentType) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] Content-Type not exist!!");
    }
    global.contentEncoding = text("Content-Encoding");
    if (!global.contentEncoding) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CFDTParameters::m_OnFDTParameters] Content-Encoding not exist!!");
    }
    vyr::ReadAttribute(node, "fileTemplate", global.fileTemplate);
    vyr::ReadAttribute(node, "maxExpiresDelta", global.maxExpiresDelta, -1);
    vyr::ReadAttribute(node, "maxTransportSize", global.maxTransportSize, -1);
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
    vyr::DispatchChildren(this, k_handlers, node, "[CFDTParameters::m_OnFDTParameters] %s");
}

}  // namespace

bool CEFDT::SetCallback(const SEFDTInfoCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

SEFDTInfo* CEFDT::GetEFDTInfo() const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") ? m->info.get() : nullptr;
}

vyr::SXmlKind CEFDT::t_Kind() const
{
    return vyr::XmlKind<SState>("CEFDT");
}
