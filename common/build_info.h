#pragma once

/** Names of this build as the title, the logs and the report show them. */
namespace BuildInfo
{
constexpr const char* version = "v1.0.0b1";
constexpr const char* date = "Apr 03 2020";
}  // namespace BuildInfo
