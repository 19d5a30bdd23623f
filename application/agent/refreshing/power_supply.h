#pragma once

#include <filesystem>

namespace orvan {

/// Where the kernel tells of batteries and plugs.
inline constexpr auto systemPowerSupplies = "/sys/class/power_supply";

/// Whether the machine runs on its batteries, and those hold less than a fifth between them. A machine without
/// batteries, or one that tells nothing of them, is taken to be plugged in. The batteries of mice and the like are not
/// the machine's.
bool isBatteryLow(const std::filesystem::path& supplies = systemPowerSupplies);

} // namespace orvan
