// What libFuzzer asks for new inputs of the targets that read documents.

#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/Vocabularies.h"

#include <cstring>

// Of libFuzzer: changes bytes without knowing what they mean.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

// The parser has to meet what is not well-formed as well.
constexpr unsigned int ONE_IN_HOW_MANY_IS_BYTES = 5;

QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return FuzzTarget::Input(data, size).takeRest();
}

bool copy(const QByteArray& bytes, std::uint8_t* out, std::size_t maxSize)
{
    const bool fits = !bytes.isEmpty() && static_cast<std::size_t>(bytes.size()) <= maxSize;
    if (fits) {
        std::memcpy(out, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    return fits;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed)
{
    FuzzTarget::setUp();
    if (seed % ONE_IN_HOW_MANY_IS_BYTES != 0) {
        const QByteArray document =
            DocumentMutator(vocabularyOfTarget(), seed).mutated(bytesOf(data, size));
        if (copy(document, data, maxSize)) {
            return static_cast<std::size_t>(document.size());
        }
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                                 const std::uint8_t* other, std::size_t otherSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned int seed)
{
    FuzzTarget::setUp();
    const QByteArray document = DocumentMutator(vocabularyOfTarget(), seed)
                                    .crossed(bytesOf(data, size), bytesOf(other, otherSize));
    return copy(document, out, maxSize) ? static_cast<std::size_t>(document.size()) : 0;
}
