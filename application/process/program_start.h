#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvan {

/// The program of that name in the folder of the running one, or else where PATH has it. Reads the environment, so
/// nothing may change that at the same time.
std::optional<std::filesystem::path> programCalled(const std::string& name);

/// Starts a program that goes on by itself, whatever becomes of this process: a group of its own, nothing to read,
/// nowhere to write, none of our open files. `variables` come on top of this process's environment. Whether it was
/// started; what becomes of it is not known. Returns once it is (a few milliseconds). From any thread.
///
/// In a service of systemd's the new program becomes a unit of its own: it shares neither the service's restrictions
/// nor its end.
bool startByItself(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::map<std::string, std::string>& variables);

} // namespace orvan
