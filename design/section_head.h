// The head line of an instance's section in a "sym\<model>-param.txt" file.
#pragma once

#include <string>

/// True when `line` is a section head of that model and instance: it begins with "*" and
/// holds both names as whole blank-separated words (the "*" aside), so the head of `$7ai10`
/// is not one of `$7ai1`. An empty name is held by every head.
bool IsSectionHead(const std::string& line, const std::string& model, const std::string& instance);
