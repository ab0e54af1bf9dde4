#pragma once

#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "common/CoreOS/PtrArray.h"
#include "lls/ParseLLS.h"
#include "platform/Log.h"

namespace vyr {

/// A record as a table parser holds it.
template <class TRecord>
struct THeld : TRecord {
    unsigned short group = 0;  ///< CReplace::Group() of its table
};

/// What SetReplace is in the parsers of tables: the records that a table brings take the place of those that
/// the last table of its group left, and there is an end to how many are held. While it is off, tables pile up.
class CReplace {
  public:
    /// Channel context, group of the table's header, group that the caller gave.
    using TGroup = std::tuple<const void*, unsigned char, unsigned char>;

    void Set(bool on) { m_on = on; }
    bool On() const { return m_on; }

    /// A table begins.
    void Begin(const TGroup& group)
    {
        m_refused = 0;
        m_left = m_on ? TCParseLLS::k_maxPerGroup : 0;
        m_brought = m_asked = false;
        m_key = group;
        const auto known = m_groups.find(group);
        m_group = m_on && known != m_groups.end() ? known->second : static_cast<unsigned short>(0);
    }
    /// Nothing is held any more, of any group; the table goes on.
    void Forget()
    {
        m_groups.clear();
        m_group = 0;
        m_brought = m_asked = false;
    }
    /// What the records of the table carry; 0: they are never replaced.
    unsigned short Group() const { return m_group; }
    /// Whether the table may bring one record more.
    bool Take()
    {
        if (!m_on) {
            return true;
        }
        if (m_group == 0 && !m_asked) {  // once, as a table may bring thousands
            m_asked = true;
            m_group = m_Number();
        }
        if (m_group == 0 || m_left-- <= 0) {
            ++m_refused;
            return false;
        }
        m_brought = true;
        return true;
    }

    /// Drops what the table's group held before, in an array of pointers to THeld<TRecord> whose first `held`
    /// elements are older than the table.
    template <class TRecord>
    void Drop(CCPtrArray& list, int held) const
    {
        if (m_group == 0) {
            return;
        }
        struct SOld {
            const CCPtrArray& list;
            int held;
            unsigned short group;
        } old = {list, held, m_group};
        list.RemoveIf(
            [](void* user, int i) {
                const auto* o = static_cast<const SOld*>(user);
                return i < o->held && static_cast<const THeld<TRecord>*>(o->list.Data(i))->group == o->group;
            },
            &old);
    }
    /// The same in a vector of records.
    template <class TRecord>
    void Drop(std::vector<THeld<TRecord>>& list, std::size_t held) const
    {
        if (m_group == 0) {
            return;
        }
        std::size_t kept = 0;
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (i >= held || list[i].group != m_group) {
                if (kept != i) {
                    list[kept] = std::move(list[i]);
                }
                ++kept;
            }
        }
        list.resize(kept);
    }
    /// The table is over, and what its group held before is dropped: says how much of it was refused, if any.
    void End(const char* className, VYR_CALLER)
    {
        if (m_group != 0 && !m_brought) {
            m_groups.erase(m_key);  // nothing of it is held: another one may take its place
        }
        if (m_refused > 0 && LogEnabled(LOG_PRIORITY_INFO)) {
            Print(LOG_PRIORITY_INFO, here, "[%s::t_Parse] %d records dropped: a group holds %d, a channel %d groups",
                  className, m_refused, TCParseLLS::k_maxPerGroup, TCParseLLS::k_maxGroups);
        }
    }

  private:
    /// A number for the table's group, which has none; 0: there are too many.
    unsigned short m_Number()
    {
        int ofChannel = 0;
        std::set<unsigned short> taken;
        for (const auto& [group, number] : m_groups) {
            ofChannel += std::get<0>(group) == std::get<0>(m_key);
            taken.insert(number);
        }
        if (ofChannel >= TCParseLLS::k_maxGroups || taken.size() >= 0xFFFF) {
            return 0;
        }
        unsigned short number = 1;
        while (taken.count(number) > 0) {
            ++number;
        }
        m_groups.emplace(m_key, number);
        return number;
    }

    bool m_on = false;
    bool m_brought = false;  ///< the table brought a record
    bool m_asked = false;    ///< a number was looked for
    TGroup m_key;            ///< of the table
    unsigned short m_group = 0;
    int m_left = 0;
    int m_refused = 0;
    std::map<TGroup, unsigned short> m_groups;
};

}  // namespace vyr
