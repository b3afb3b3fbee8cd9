#pragma once
#include <functional>
#include <map>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

#include <QUuid>

namespace qirn {

/// What becomes of `theirs`, the list as others have it by now, when we have made `ours` of `base`, from which they began
/// as well. What we have added, changed or taken out of `base` is so in the result, also where they have changed it as
/// well; everything else is theirs. The order is theirs, with what only we have behind it.
///
/// `keyOf` tells an entry from all others of its list; entries compare with `==`.
template <class Entry, class KeyOf>
std::vector<Entry> mergedThreeWays(const std::vector<Entry>& base, const std::vector<Entry>& ours,
                                   std::vector<Entry> theirs, const KeyOf& keyOf) {
    using Key = std::decay_t<std::invoke_result_t<KeyOf, const Entry&>>;
    const auto byKey = [&keyOf](const std::vector<Entry>& list) {
        std::map<Key, const Entry*> entries;
        for (const Entry& entry : list) entries.emplace(std::invoke(keyOf, entry), &entry);
        return entries;
    };
    const auto before = byKey(base), now = byKey(ours);
    const auto in = [](const std::map<Key, const Entry*>& entries, const Key& key) {
        const auto found = entries.find(key);
        return found == entries.end() ? nullptr : found->second;
    };
    std::vector<Entry> result;
    std::set<Key> placed;
    for (Entry& entry : theirs) {
        const Key key = std::invoke(keyOf, entry);
        const Entry *const was = in(before, key), *const is = in(now, key);
        const bool isUntouched = was ? is && *was == *is : !is;
        placed.insert(key);
        if (isUntouched)
            result.push_back(std::move(entry));
        else if (is)
            result.push_back(*is);
    }
    for (const Entry& entry : ours) {
        const Key key = std::invoke(keyOf, entry);
        if (placed.contains(key)) continue;
        const Entry* const was = in(before, key);
        if (!was || *was != entry) result.push_back(entry); // otherwise they took it out
    }
    return result;
}

/// Where a list that people have written has an id twice, all but the first get others: always the same, so that two
/// readers of the list agree.
template <class Entry> void giveEachItsOwnId(std::vector<Entry>& list) {
    std::set<QUuid> taken;
    for (Entry& entry : list)
        while (!taken.insert(entry.id).second)
            entry.id = QUuid::createUuidV5(entry.id, QStringLiteral("another"));
}

} // namespace qirn
