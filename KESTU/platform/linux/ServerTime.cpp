// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ServerTime.h"

#include <cstdint>

namespace kestu {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

Moment momentOf(xcb_timestamp_t serverTime, Moment now) {
    const auto sinceBoot = std::chrono::duration_cast<milliseconds>(now.time_since_epoch());
    // In 32 bits, which both overflow alike every 49 days.
    const milliseconds age{static_cast<std::uint32_t>(sinceBoot.count()) - serverTime};
    return age <= 10s ? now - age : now;
}

} // namespace kestu
