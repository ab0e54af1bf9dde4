#pragma once

#include <memory>
#include <string>

#include "MMTMsg.h"

/// Makes messages of one kind.
class VYR_API MMTMsgAbstractFactory {
  public:
    virtual ~MMTMsgAbstractFactory();
    /// A new, unparsed message, or an empty pointer.
    virtual std::shared_ptr<CMMTMsg> Create() const = 0;
};

/// Makes messages of class T.
template <class T>
class MMTMsgFactory : public MMTMsgAbstractFactory {
  public:
    std::shared_ptr<CMMTMsg> Create() const override { return std::shared_ptr<CMMTMsg>(new T); }
};

/// Stands for messages that are known by name and not parsed.
class VYR_API MMTMsgFactoryUnsupported : public MMTMsgAbstractFactory {
  public:
    /// `id` is the message's message_id, `name` what the log calls it.
    MMTMsgFactoryUnsupported(unsigned short id, std::string name);
    /// Logs id and name; empty.
    std::shared_ptr<CMMTMsg> Create() const override;

  private:
    unsigned short m_id;
    std::string m_name;
};

/// Makes MMT signalling messages from their message_id (ISO/IEC 23008-1, ATSC A/331). For any thread.
class VYR_API CMMTMsgFactory {
  public:
    /// A new, unparsed message of the class of the message_id in the first two bytes; only these are read.
    /// Empty: `length` is below 2, or the message is not supported (logged). Null data are asserted.
    static std::shared_ptr<CMMTMsg> CreateMessage(const unsigned char* data, unsigned int length);
    /// Fills the registry; nothing when it is filled. CreateMessage does this once in a process.
    static void InitializeFactory();
};
