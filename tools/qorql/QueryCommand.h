// `qorql [OPTIONS] [QUERY]`: runs statements and prints their results.
#ifndef QORQL_TOOL_QUERYCOMMAND_H
#define QORQL_TOOL_QUERYCOMMAND_H

// Returns the exit status; never throws.
int runQueryCommand(int argc, const char* const* argv) noexcept;

#endif
