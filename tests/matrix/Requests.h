#pragma once

#include <ostream>
#include <span>

#include "MatrixFixture.h"

namespace kv::matrix {

// What became of one request, judged by what the controller holds.
struct Attempt {
  bool isDone = false;    // the driver says so
  bool isRight = true;    // the values, or the effect, are those of the controller
  int executions = 0;     // of what must not be done twice
  bool restarts = false;  // the controller may need a moment now
};

// One kind of request. Each run changes the controller first, past the line, so that an answer to an earlier request
// of the same kind would show.
struct Request {
  const char* name;
  const char* model;
  const char* on;  // what fault rules call it
  int pieces;      // calls or messages that it may take, each with its own deadline
  bool isOnce;     // must not be done twice
  bool isRead;     // changes nothing: to be had from a controller that has just restarted, too
  Attempt (*run)(Fixture&);
};

[[nodiscard]] std::span<const Request> AllRequests();

// Runs it once and holds it against what must be so under any fault: in time, right, and not done twice.
Attempt RunJudged(Fixture& fixture, const Request& request);

// For the names of tests.
inline void PrintTo(const Request& request, std::ostream* out) {
  *out << request.name;
}

}  // namespace kv::matrix
