#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace kv::cli {

// One option or argument as the parser knows it.
struct OptionFacts {
  std::string name;                  // "--link"; of an argument "FILE"
  std::string value;                 // "LINK"; empty: a flag
  std::string text;                  // what it is for
  std::vector<std::string> choices;  // the only values that it takes; empty: any
};

struct VerbFacts {
  std::string name;
  std::string summary;
  std::string examples;                // lines, each with a command and what it is good for
  std::vector<OptionFacts> options;    // in the order in which --help lists them
  std::vector<OptionFacts> arguments;  // in their order
};

// The whole command line in plain words, for what is made from it: completions of shells and the manual page.
struct ProgramFacts {
  VerbFacts program;             // its options go with every verb
  std::vector<VerbFacts> verbs;  // in the order of --help
  std::string exitCodes;
};

// What the parser knows of a program or one of its verbs.
[[nodiscard]] VerbFacts DescribeVerb(const CLI::App& app, std::string examples);

// Of kvtele; in KvTele.cpp.
[[nodiscard]] ProgramFacts DescribeProgram();

// What a shell offers for the value of an option or an argument.
enum class Offer {
  Nothing,
  Choices,  // ValuesOf
  Files,
  Folders,
  Sessions,  // the names that `kvtele sessions list` prints
};
[[nodiscard]] Offer OfferFor(const OptionFacts& option);
[[nodiscard]] std::vector<std::string> ValuesOf(const OptionFacts& option);

}  // namespace kv::cli
