#pragma once
/// The free text some commands take (a description, a request): the words
/// given, joined by single spaces, or standard input for "-" or no words.

#include <span>
#include <string>

namespace modelyne::cli {

/// `words` joined by " "; standard input (its trailing line breaks removed)
/// when `words` is empty or just "-". No words with a terminal on standard
/// input is a CliError rather than a silent wait.
std::string textArgument(std::span<const std::string> words);

}  // namespace modelyne::cli
