#pragma once

#include <boost/uuid/uuid.hpp>

#include <string>
#include <utility>
#include <vector>

#pragma GCC visibility push(default) // what a shared library shows

/**
 * Which frequencies a wireless system can be set to: a raster, or a list where there is none, in
 * either case perhaps narrowed to sub ranges. All frequencies are whole kilohertz.
 *
 * A plain value. It neither writes nor reads itself; that needs the Qt DOM and the class that adds
 * it.
 */
class TuningCapability
{
public:
    /**
     * No frequencies; a new random id (RFC 4122, version 4) from the operating system.
     *
     * @throws boost::uuids::entropy_error when the system gives no random bytes.
     */
    TuningCapability();
    explicit TuningCapability(boost::uuids::uuid const& uuid);
    TuningCapability(TuningCapability const& other);
    TuningCapability(TuningCapability&& other) noexcept;
    TuningCapability& operator=(TuningCapability const& other);
    TuningCapability& operator=(TuningCapability&& other) noexcept;

    /** Returns false and writes nothing: this record has no file form. */
    virtual bool Export(std::string const& path, bool compact) const;

    /** Returns false: this record cannot read itself. */
    virtual bool Import(std::string const& path);

    virtual ~TuningCapability();

    boost::uuids::uuid id;

    // The raster.
    int rangeStart = 0;
    int rangeEnd = 0;
    int step = 0; ///< below 1 there is no raster, and freqList applies

    std::vector<int> freqList;
    std::vector<std::pair<int, int>> subRanges; ///< start and end of each
};

#pragma GCC visibility pop
