#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ts/atoms.h"
#include "ts/variant.h"

// The process-wide cache of the value lists that panes offer in their combo boxes and check
// typed values against (speakers, languages, plots, scripts, ...). Each list is described by a
// key, read once on first use, and kept until the host says it may be stale.

using TsTextPairs = std::vector<std::pair<std::u16string, std::u16string>>;
using TsNumberedTexts = std::vector<std::pair<std::u16string, std::int32_t>>;

// What a list is and how it is read. The cache keeps its own copy (Clone) of every key and
// orders keys with Less.
class CValueCacheKey {
public:
    virtual ~CValueCacheKey() = default;
    // The base orders by kind; a subclass orders its own fields when the kinds are equal.
    virtual bool Less(const CValueCacheKey& other) const { return kind_ < other.kind_; }
    virtual bool LoadTextPairs(TsTextPairs& list) const = 0;
    virtual bool LoadNumberedTexts(TsNumberedTexts& list) const = 0;
    virtual std::unique_ptr<CValueCacheKey> Clone() const = 0;
    // Whether a stored value equals a given one, for the value-to-text lookups.
    virtual bool TextValueEquals(std::u16string_view stored, std::u16string_view given) const {
        return stored == given;
    }
    virtual bool NumberValueEquals(std::int32_t stored, std::int32_t given) const {
        return stored == given;
    }

    // The atom of the key class's name.
    TsAtom Kind() const { return kind_; }

protected:
    explicit CValueCacheKey(std::u16string_view className) : kind_(TsAddAtom(className)) {}
    CValueCacheKey(const CValueCacheKey&) = default;
    CValueCacheKey& operator=(const CValueCacheKey&) = default;

private:
    TsAtom kind_;
};

// A condition on the rows of a table: the column must hold the value (an integer, string or
// bool variant).
struct TsRowCondition {
    std::u16string column;
    variant value;
};

// A list read from one column of a 2DA table through the host's resource manager: each row that
// meets every condition gives the cell's text with the row's id (as a number, or as decimal text
// in the text-pair form). The options and the flag are kept as part of the key's identity so that
// keys differing only there never share an entry; no reading depends on them today.
class C2daCacheKey : public CValueCacheKey {
public:
    C2daCacheKey(std::u16string table, std::u16string column,
                 std::vector<TsRowCondition> rowConditions = {}, std::u16string defaultText = {});
    C2daCacheKey(std::u16string table, std::u16string column, std::int32_t firstOption,
                 std::vector<TsRowCondition> rowConditions, std::u16string textOption,
                 std::int32_t secondOption, std::u16string defaultText, std::uint32_t flag);

    bool Less(const CValueCacheKey& other) const override;
    bool LoadTextPairs(TsTextPairs& list) const override;
    bool LoadNumberedTexts(TsNumberedTexts& list) const override;
    std::unique_ptr<CValueCacheKey> Clone() const override;

    const std::u16string& Table() const { return table_; }
    const std::u16string& Column() const { return column_; }
    const std::vector<TsRowCondition>& RowConditions() const { return rowConditions_; }
    const std::u16string& DefaultText() const { return defaultText_; }

private:
    std::u16string table_;
    std::u16string column_;
    std::int32_t firstOption_ = -1;
    std::vector<TsRowCondition> rowConditions_;
    std::u16string textOption_;
    std::int32_t secondOption_ = -1;
    std::u16string defaultText_;
    std::uint32_t flag_ = 0;
};

// The resources of one type in the module store, listed through the host's resource manager.
// The type is held as the atom of its name (TsAddAtom(u"dlg")), which keeps the key one 16-bit
// field. Each text pair is (name, "name.type"); there is no numbered form.
class CDbResRefCacheKey : public CValueCacheKey {
public:
    explicit CDbResRefCacheKey(std::uint16_t resourceType);
    explicit CDbResRefCacheKey(std::u16string_view resourceType);

    bool Less(const CValueCacheKey& other) const override;
    bool LoadTextPairs(TsTextPairs& list) const override;
    bool LoadNumberedTexts(TsNumberedTexts& list) const override;
    std::unique_ptr<CValueCacheKey> Clone() const override;

    std::uint16_t ResourceType() const { return resourceType_; }

private:
    std::uint16_t resourceType_;
};

// The cached lists of one key. Each form is read on its first request; a failed read is kept
// as failed until the entry is forgotten or the cache emptied.
struct CValueCacheEntry {
    bool textPairsLoaded = false;
    bool textPairsOk = false;
    TsTextPairs textPairs;
    bool numberedTextsLoaded = false;
    bool numberedTextsOk = false;
    TsNumberedTexts numberedTexts;
};

class CValueCache {
public:
    // The cache of this library, shared by every editor it runs.
    static CValueCache& Process();

    // The list of the key, read on first request; null when reading failed.
    const TsTextPairs* TextPairs(const CValueCacheKey& key);
    const TsNumberedTexts* NumberedTexts(const CValueCacheKey& key);

    // The key's entry, made empty (under a copy of the key) when new.
    CValueCacheEntry& Entry(const CValueCacheKey& key);
    bool Contains(const CValueCacheKey& key) const;
    // Destroys the key's entry and its copy of the key; false when there was none.
    bool Forget(const CValueCacheKey& key);
    // Destroys every entry and key.
    void Clear() { entries_.clear(); }
    std::size_t Size() const { return entries_.size(); }

private:
    struct KeyOrder {
        using is_transparent = void;
        static const CValueCacheKey& Of(const std::unique_ptr<CValueCacheKey>& k) { return *k; }
        static const CValueCacheKey& Of(const CValueCacheKey& k) { return k; }
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return Of(a).Less(Of(b));
        }
    };
    std::map<std::unique_ptr<CValueCacheKey>, std::unique_ptr<CValueCacheEntry>, KeyOrder> entries_;
};

// How a pane or a combo box uses the list of one key: it owns the key and asks the cache (the
// process's, unless given another) for the list on every call, so that it always sees the list
// as it is since the last emptying. Lookups scan the list in order; they answer false, leaving
// the output alone, when the list could not be read or nothing matches.
class CValueCacheAccessor {
public:
    explicit CValueCacheAccessor(std::unique_ptr<CValueCacheKey> key);
    CValueCacheAccessor(std::unique_ptr<CValueCacheKey> key, CValueCache& cache);
    virtual ~CValueCacheAccessor() = default;
    CValueCacheAccessor(const CValueCacheAccessor&) = delete;
    CValueCacheAccessor& operator=(const CValueCacheAccessor&) = delete;

    // Drops the key's entry so that the next request reads the list again.
    virtual void Forget();
    virtual const TsTextPairs* TextPairs();
    virtual const TsNumberedTexts* NumberedTexts();
    virtual bool CopyTextPairs(TsTextPairs& out);
    virtual bool CopyNumberedTexts(TsNumberedTexts& out);
    // The second text paired with `text` (ASCII case ignored).
    virtual bool SecondTextOf(std::u16string_view text, std::u16string& out);
    // The number paired with `text` (ASCII case ignored).
    virtual bool ValueOf(std::u16string_view text, std::int32_t& out);
    // The first text paired with `value`, as the key compares values.
    virtual bool TextOfValue(std::u16string_view value, std::u16string& out);
    virtual bool TextOfValue(std::int32_t value, std::u16string& out);

    const CValueCacheKey& Key() const { return *key_; }

private:
    std::unique_ptr<CValueCacheKey> key_;
    CValueCache& cache_;
};
