// Documents for the second reading: analyze reports put together from their
// fragments in any order, most of them then damaged. The same seed gives the same
// documents with every compiler and library.

#pragma once

#include <cstdint>
#include <random>
#include <string>

using Random = std::mt19937_64;

// A number from 0 to count - 1; the standard distributions differ from library to
// library.
std::uint64_t random_below(Random& random, std::uint64_t count);

// One document, which may hold NUL bytes.
std::string generate_document(Random& random);

// The text with everything but printable ASCII as C escapes, a new line after
// each line feed, so that a document that failed can be put into a test.
std::string printable(const std::string& text);
