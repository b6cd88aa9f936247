#include "ZelMain/FrequencyCompatibility/shared/TuningCapability.h"

#include <boost/uuid/random_generator.hpp>

TuningCapability::TuningCapability() : id(boost::uuids::random_generator()()) {}

TuningCapability::TuningCapability(boost::uuids::uuid const& uuid) : id(uuid) {}

TuningCapability::TuningCapability(TuningCapability const& other) = default;

TuningCapability::TuningCapability(TuningCapability&& other) noexcept = default;

TuningCapability& TuningCapability::operator=(TuningCapability const& other) = default;

TuningCapability& TuningCapability::operator=(TuningCapability&& other) noexcept = default;

bool TuningCapability::Export(std::string const& /*path*/, bool /*compact*/) const
{
    return false;
}

bool TuningCapability::Import(std::string const& /*path*/)
{
    return false;
}

TuningCapability::~TuningCapability() = default;
