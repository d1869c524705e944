// The ad server's banner description.
#include "BannerResponse.h"
#include "BoundedFetch.h"
#include "FuzzApp.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char *>(data), qsizetype(size));
    GADRequestError error;
    if (const auto description = BannerResponse::parseDescription(json, 30, 300, 60, &error)) {
        FUZZ_CHECK(BoundedFetch::isWebUrl(description->image) && BoundedFetch::isWebUrl(description->click));
        FUZZ_CHECK(description->refreshSeconds >= 30 && description->refreshSeconds <= 300);
    } else {
        FUZZ_CHECK(error.code == GADRequestError::InvalidResponse && !error.localizedDescription.isEmpty());
    }
    return 0;
}
