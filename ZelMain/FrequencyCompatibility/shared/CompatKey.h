#pragma once

#include <iosfwd>
#include <string>

#pragma GCC visibility push(default) // what a shared library shows

// The keys are polymorphic so that each form of a key resets, reads and writes itself, and plain
// values besides: they are copied, stored by value and never deleted through a base. A virtual
// destructor would only add a slot to their table, so the compilers' advice is off here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/**
 * Names a kind of wireless system by equipment series, frequency band and transmitter profile.
 *
 * Fields are byte strings; nothing is trimmed, case-folded or escaped. Comparisons are bytewise,
 * no character set is assumed. A plain value; nothing here throws but the allocator.
 */
class BasicCompatSystemUniqueKey
{
public:
    /** A key whose fields are all empty. */
    BasicCompatSystemUniqueKey() = default;
    BasicCompatSystemUniqueKey(std::string const& seriesName, std::string const& bandName,
                               std::string const& txProfileName);

    /** Empties every field. */
    virtual void Reset();

    /**
     * "series|band", and "|txProfile" after it when that is not empty.
     *
     * A "|" inside a field is written as it stands and splits the field when it is read back.
     */
    virtual std::string ToString() const;

    /**
     * Reads the form of ToString().
     *
     * All that follows the second separator belongs to the transmitter profile, further separators
     * included. A text without any separator names both series and band ("ABC" gives ABC and ABC).
     * @return whether series and band are both filled; if not, the key is reset.
     */
    virtual bool FromString(std::string const& text);

    /**
     * The binary form: series, a zero byte, band, a zero byte, txProfile; no terminator, no length.
     *
     * @param data  receives an array that the caller releases with delete[].
     * @param size  receives its length in bytes.
     * @return true. Throws std::bad_alloc when there is no memory; then data is null and size 0.
     */
    virtual bool Serialize(void*& data, int& size);

    /**
     * Reads the binary form of @p size bytes. Zero bytes after the second belong to txProfile.
     *
     * @return false, with the key reset, when @p data is null or holds fewer than two zero bytes.
     *         The content is not judged: two zero bytes alone give an empty key and true.
     */
    virtual bool Deserialize(void const* data, int size);

    /** Whether every field is empty. */
    bool IsNull() const;

    /** Whether series and band are both filled; the transmitter profile may be empty. */
    bool IsValid() const;

    std::string series;
    std::string band;
    std::string txProfile; ///< also called the mode
};

/**
 * Names a kind of wireless system by zone and inclusion group as well.
 *
 * The order by which maps are keyed is operator< below.
 */
class CompatSystemUniqueKey : public BasicCompatSystemUniqueKey
{
public:
    /** A key whose fields are all empty. */
    CompatSystemUniqueKey() = default;
    /** The zone comes first, as in the text form. */
    CompatSystemUniqueKey(std::string const& zoneName, std::string const& seriesName,
                          std::string const& bandName, std::string const& txProfileName,
                          std::string const& inclGroupName);
    CompatSystemUniqueKey(BasicCompatSystemUniqueKey const& basic, std::string const& zoneName,
                          std::string const& inclGroupName);

    void Reset() override;

    /** "zone|series|band|txProfile|inclGroup", with all four separators also for empty fields. */
    std::string ToString() const override;

    /**
     * Reads the form of ToString(). Separators after the fourth belong to the inclusion group.
     *
     * With fewer than four separators the search for the next one starts again at the beginning of
     * the text, so fields repeat: "a|b" gives zone a, series b, band a, txProfile b, inclGroup a|b.
     * @return whether zone, series, band and inclGroup are all filled; if not, the key is reset.
     */
    bool FromString(std::string const& text) override;

    /** Refuses, with null and 0: only the basic key has a binary form. */
    bool Serialize(void*& data, int& size) override;

    /** Refuses and leaves the key as it is: only the basic key has a binary form. */
    bool Deserialize(void const* data, int size) override;

    /** Whether all five fields are empty. */
    bool IsNull() const;

    /**
     * Whether at least one of zone, series, band and txProfile is filled.
     *
     * The inclusion group is not asked: by itself it names no system.
     */
    bool IsValid() const;

    BasicCompatSystemUniqueKey ToBasicCompatSystemUniqueKey() const;

    std::string zone;
    std::string inclGroup;
};

/**
 * A key with a rank by which the more agile systems come first.
 *
 * The rank is no part of the text form. Equality and order leave the zone out: systems of the same
 * kind rank alike wherever they stand.
 */
class AgilityOrderedCompatSystemUniqueKey : public CompatSystemUniqueKey
{
public:
    /** The order of a key that was given none: seven hexadecimal digits F. */
    static constexpr unsigned int UNSET_AGILITY_ORDER = 0x0FFFFFFF;

    /** A key whose fields are all empty, with the order unset. */
    AgilityOrderedCompatSystemUniqueKey() = default;
    AgilityOrderedCompatSystemUniqueKey(std::string zoneName, std::string const& seriesName,
                                        std::string const& bandName,
                                        std::string const& txProfileName,
                                        std::string const& inclGroupName, unsigned int order);
    AgilityOrderedCompatSystemUniqueKey(CompatSystemUniqueKey const& key, unsigned int order);

    /** Empties the fields and unsets the order. FromString() begins with this as well. */
    void Reset() override;

    bool Serialize(void*& data, int& size) override;
    bool Deserialize(void const* data, int size) override;

    /** The key without its order. */
    CompatSystemUniqueKey ToCompatSystemUniqueKey();

    unsigned int agilityOrder = UNSET_AGILITY_ORDER; ///< lower sorts first
};

#pragma GCC diagnostic pop

/** Series, band and txProfile are each equal. */
bool operator==(BasicCompatSystemUniqueKey const& left, BasicCompatSystemUniqueKey const& right);

/** All five fields are each equal. */
bool operator==(CompatSystemUniqueKey const& left, CompatSystemUniqueKey const& right);

/** All but the zone is equal, the order included. */
bool operator==(AgilityOrderedCompatSystemUniqueKey const& left,
                AgilityOrderedCompatSystemUniqueKey const& right);

/**
 * Compares series, band and txProfile as one joined text without separators, as unsigned bytes.
 *
 * So (ab, c) and (a, bc) are neither less than each other nor equal: a sorted container takes them
 * for one key.
 */
bool operator<(BasicCompatSystemUniqueKey const& left, BasicCompatSystemUniqueKey const& right);

/** The same for the joined text of zone, series, band, txProfile and inclGroup. */
bool operator<(CompatSystemUniqueKey const& left, CompatSystemUniqueKey const& right);

/**
 * The smaller order is less, whatever the text; between equal orders the joined text of series,
 * band, txProfile and inclGroup decides. The zone is left out.
 */
bool operator<(AgilityOrderedCompatSystemUniqueKey const& left,
               AgilityOrderedCompatSystemUniqueKey const& right);

/** Writes key.ToString(), with the text form of what @p key really is. */
std::ostream& operator<<(std::ostream& stream, BasicCompatSystemUniqueKey const& key);
std::ostream& operator<<(std::ostream& stream, CompatSystemUniqueKey const& key);

#pragma GCC visibility pop
