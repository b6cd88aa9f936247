#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

#pragma GCC visibility push(default) // what a shared library shows

class QDataStream;
class QDebug;
class QLocale;

/**
 * One radio frequency, held in kilohertz as an IEEE 754 double.
 *
 * A plain value: copy it, compare it, keep it in a container or a QVariant. 0 kHz stands for "no
 * frequency" (isNull()). Beside the number a value carries a free text, its suffix, and two flags
 * that only its text forms look at:
 * - "find best when zero": a null value reads "Find Best". Every value has it unless it was made
 *   with Frequency(double, bool);
 * - "keep trailing zeros": toString(bool) writes all its decimals. Every value is made with it;
 *   only a value read from a QDataStream can be without.
 *
 * Nothing throws and nothing is undefined, whatever the number: rounding to a whole number gives
 * the nearest int for a number beyond 32 bits and 0 for one that is not a number (NaN).
 *
 * A value may be used by one thread at a time, different values by any threads. All text forms,
 * read or written, follow the default QLocale unless they take another; call QLocale::setDefault()
 * before other threads use them.
 */
class Frequency
{
public:
    /** Units of a text. Callers keep the numbers, so they are fixed. */
    enum FreqUnits : int { NoUnits = 0, GHz = 1, MHz = 2, kHz = 3, Hz = 4 };

    /** The null frequency, which reads "Find Best". */
    Frequency();

    /** @param findBestWhenZero  whether the value reads "Find Best" when @p khz is zero. */
    Frequency(double khz, bool findBestWhenZero);

    Frequency(const Frequency& other);
    Frequency(Frequency&& other) noexcept;
    Frequency& operator=(const Frequency& other);
    Frequency& operator=(Frequency&& other) noexcept;
    virtual ~Frequency();

    /** @name From a number. Kilohertz and hertz are kept as given. */
    ///@{
    static Frequency fromKhz(double khz);
    static Frequency fromHz(int hz);
    /** Rounded to the nearest 0.1 kHz, halves upward; ends at the 0.1 kHz that an int counts. */
    static Frequency fromMhz(double mhz);
    /** Rounded as fromMhz() does. */
    static Frequency fromGhz(double ghz);
    ///@}

    /**
     * @name From a text.
     *
     * The number is read in the form of the C locale ("470.125", "4.7e2"), with the decimal point
     * of the default locale or ".". Group separators and the digits of other scripts are not
     * understood.
     *
     * A text that is not understood gives the null frequency. @p ok, which may be null, is told
     * whether the number was understood. "inf" and "nan" are numbers; a number too large for a
     * double is not.
     */
    ///@{
    /** A number of kilohertz, kept as read. */
    static Frequency fromKhzString(const QString& text, bool* ok = nullptr);
    /**
     * A number of megahertz, rounded to the nearest 10 Hz, halves upward; ends at the 10 Hz steps
     * that an int counts. The grain is finer than that of fromMhz().
     */
    static Frequency fromMhzString(const QString& text, bool* ok = nullptr);
    /** A number of gigahertz, rounded as fromMhzString() does. */
    static Frequency fromGhzString(const QString& text, bool* ok = nullptr);

    /**
     * A number and a unit word, MHz, GHz or kHz in any case ("470.125 MHz"), or a lone number of
     * @p defaultUnits. Only blanks separate the two, as many as there are.
     *
     * Any other text is not understood, one in hertz included: a lone number with
     * @p defaultUnits Hz (or an unknown one) also brings a message at debug level,
     * "Unsupported frequency units. ".
     */
    static Frequency fromString(const QString& text, bool* ok = nullptr,
                                FreqUnits defaultUnits = NoUnits);
    ///@}

    /**
     * The megahertz of a text in the form of @p locale: a text with that locale's decimal point is
     * a number of megahertz, one without it a whole number of kilohertz. 0 when it is neither.
     */
    static double StringToMhz(const QString& text, const QLocale& locale);

    /**
     * Frees the unit of a number with its unit from what trails it: "470.125 MHz," becomes
     * "470.125 MHz".
     *
     * The unit is a word of at least four characters that has MHz or kHz in it, in any case; it is
     * cut after its first "z". A bare "MHz" or "kHz", with nothing to cut off, is refused.
     * @param ok  told whether there was such a unit; may be null.
     * @return the number, a blank and the unit; the empty text if refused.
     */
    static QString ScrubFreqString(const QString& text, bool* ok);

    /** The lowest frequency that callers should allow, 30 MHz. Nothing here clamps to it. */
    static Frequency getMinAllowedFrequency();
    /** The highest frequency that callers should allow, 2 GHz. Nothing here clamps to it. */
    static Frequency getMaxAllowedFrequency();

    /** @name As a number, not rounded. */
    ///@{
    double inKhz() const { return m_valueKhz; }
    double inMhz() const;
    double inGhz() const;
    ///@}

    /**
     * Whole hertz, truncated. A negative frequency gives the two's complement of its hertz; a
     * number beyond 64 bits gives the limit, NaN gives 0.
     */
    quint64 inHz() const;

    /** Whether this is 0 kHz exactly. */
    bool isNull() const { return m_valueKhz == 0.0; }

    /** The free text that the toString() forms append; empty at first. */
    QString suffix() const { return m_suffix; }
    void setSuffix(const QString& suffix) { m_suffix = suffix; }

    /**
     * The nearest multiple of @p step, halves upward. The number of steps ends at what an int
     * holds; a null step gives a null frequency.
     */
    Frequency roundedToMultipleOf(const Frequency& step) const;

    /**
     * @name As a text in the form of the default locale: its decimal point, digits and minus sign.
     *
     * A null frequency gives "Find Best", and nothing else, if it was made so (see above).
     * @p precision is the number of decimals.
     */
    ///@{
    /**
     * In kilohertz, with group separators where the locale has them ("1,470.125 kHz").
     *
     * Without units the blank before them stays: "470.125 ".
     * @param dropOneZero  leaves out one "0" at the end of the number, be it a decimal or not
     *     ("470.50 kHz" for 470.5 with precision 3).
     */
    QString asKhzString(bool withUnits, int precision, bool dropOneZero) const;
    /** In megahertz, without group separators ("1470.125 MHz", "1470.125"). */
    QString asMhzString(bool withUnits, int precision) const;
    /** In gigahertz, with group separators where the locale has them ("1.470 GHz", "1.470"). */
    QString asGhzString(bool withUnits, int precision) const;

    /** The same as toString(true). */
    QString toString() const;
    /**
     * In kilohertz below 1 MHz (so for every negative value), else in megahertz, with units and
     * three decimals ("470.125 MHz").
     *
     * Without the "keep trailing zeros" flag, decimals "0" at the end are left out.
     * @param withSuffix  appends the suffix, as it stands.
     */
    QString toString(bool withSuffix) const;
    /**
     * As toString(bool), but @p trimZeros decides on zeros at the end ("470.1 MHz"), and without
     * @p withSuffix every occurrence of the suffix is taken out of the text.
     */
    QString toString(bool trimZeros, bool withSuffix) const;
    /**
     * In kilohertz below 1 MHz, in megahertz below 1 GHz, else in gigahertz, with units and three
     * decimals, all kept ("1.500 GHz"). The two numbers mean nothing; older callers pass them.
     */
    QString toString(int, int, bool withSuffix) const;
    ///@}

    /**
     * Removes decimals "0" at the end of a number that has exactly @p maxDecimals decimals of the
     * default locale, which more text may follow: at least @p minDecimals stay, and if none stays,
     * the decimal point goes too.
     *
     * A text without the decimal point, or with fewer than @p maxDecimals characters after it, is
     * left as it is. The zeros of other scripts are not removed.
     */
    static void AdjustTrailingZeros(QString& text, int minDecimals, int maxDecimals);

    /** "GHz", "MHz", "kHz", "Hz"; the empty text for any other value. */
    static QString stringFromUnits(FreqUnits units);
    /** The units that @p text names, in any case; NoUnits for any other text (" MHz"). */
    static FreqUnits UnitsFromString(const QString& text);

    static double khzToMhz(double khz);
    static double mhzToKhz(double mhz);
    static double ghzToKhz(double ghz);

    /** A QVariant of the meta-type "Frequency" that holds a copy. */
    operator QVariant() const;

private:
    friend QDataStream& operator<<(QDataStream& stream, const Frequency& frequency);
    friend QDataStream& operator>>(QDataStream& stream, Frequency& frequency);

    bool readsFindBest() const { return m_findBestWhenZero && isNull(); }
    QString inFittingUnits() const;

    double m_valueKhz = 0.0;
    bool m_findBestWhenZero = true;
    QString m_suffix;
    bool m_keepTrailingZeros = true;
};

Q_DECLARE_METATYPE(Frequency)

/** @name Order of the exact kilohertz. NaN is neither before nor after anything. */
///@{
bool operator<(const Frequency& left, const Frequency& right);
bool operator<=(const Frequency& left, const Frequency& right);
bool operator>(const Frequency& left, const Frequency& right);
bool operator>=(const Frequency& left, const Frequency& right);
///@}

/**
 * @name Equality of the whole hertz (Frequency::inHz()).
 *
 * Two values within the same hertz are equal although one may be less than the other: what the
 * arithmetic of doubles leaves behind the last hertz does not make them differ.
 */
///@{
bool operator==(const Frequency& left, const Frequency& right);
bool operator!=(const Frequency& left, const Frequency& right);
///@}

/**
 * @name Arithmetic.
 *
 * A result is a new value: it reads "Find Best" when zero and has no suffix, whatever the operands
 * have, and so has the left operand of a compound assignment afterwards.
 */
///@{
Frequency operator+(const Frequency& left, const Frequency& right);
Frequency& operator+=(Frequency& left, const Frequency& right);
/** May go below zero. */
Frequency operator-(const Frequency& left, const Frequency& right);
Frequency& operator-=(Frequency& left, const Frequency& right);
/** Rounded to the nearest whole kilohertz, halves upward; ends at the kilohertz an int holds. */
Frequency operator*(const Frequency& left, float factor);
Frequency& operator*=(Frequency& left, float factor);
/** Not rounded. Divided by zero, @p left stays as it is, with its suffix and flags. */
Frequency operator/(const Frequency& left, float divisor);
Frequency& operator/=(Frequency& left, float divisor);
/** The ratio of the two; 0.0 when @p right is zero. */
double operator/(const Frequency& left, const Frequency& right);
///@}

/**
 * The low 32 bits of the whole kilohertz. Values that are equal but lie on either side of a whole
 * kilohertz have different hashes.
 */
uint qHash(const Frequency& frequency);

/**
 * Kilohertz (double), "find best when zero" (bool), suffix (QString) and "keep trailing zeros"
 * (bool), each in the stream's own encoding. What a failed stream gives is read as it comes; ask
 * the stream for its status.
 */
QDataStream& operator<<(QDataStream& stream, const Frequency& frequency);
QDataStream& operator>>(QDataStream& stream, Frequency& frequency);

/** "[Frequency: 470.125 MHz] - ", with the suffix; the text ends open for more to follow. */
QDebug operator<<(QDebug debug, const Frequency& frequency);

#pragma GCC visibility pop
