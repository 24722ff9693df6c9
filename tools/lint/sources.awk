# Checks the C++ files one by one: no sleep and no clock past the pacers, no file over 500 lines, every header guarded.

function Fail(line, text) { printf "%s:%d: %s\n", file, line, text; failed = 1 }

function EndOfFile() {
  if (file == "") return
  if (lines > 500) Fail(lines, lines " lines; 500 are the most a file may have")
  if (file ~ /\.h$/ && !guarded) Fail(1, "a header needs #pragma once before its first code")
}

BEGIN {
  clocks = "(sleep_for|sleep_until|usleep|nanosleep|QThread::m?sleep|QElapsedTimer|QDateTime::current|QTime::current" \
           "|(system|steady|high_resolution)_clock::now|clock_gettime|gettimeofday|GetTickCount|QueryPerformanceCounter" \
           "|std::time[ ]*\\(|std::clock[ ]*\\(|::[sS]leep[ ]*\\()"
}

FNR == 1 {
  EndOfFile()
  file = FILENAME; lines = 0; guarded = 0; code = 0
  mayReadClocks = file ~ /Pacer[^\/]*$/ || file ~ /^bench\// || file ~ /^apps\/[^\/]*\/[mM]ain\.cpp$/
}
{
  ++lines
  text = $0
  sub(/\/\/.*/, "", text)
  if (text ~ /^[ \t]*$/) next
  if (text ~ /^#pragma once/ && !code) guarded = 1
  code = 1
  if (!mayReadClocks && text ~ clocks) Fail(FNR, "sleeps or reads a clock past the pacer: " $0)
}

END { EndOfFile(); exit failed }
