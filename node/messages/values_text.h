#pragma once
// What a field can be, for people: its words, ranges and unit.

#include <string>

#include "layout.h"

namespace messages {

std::string valuesText(const Field& field);

// Adds a part of a list that commas part.
void addPart(std::string& text, const std::string& part);

}  // namespace messages
