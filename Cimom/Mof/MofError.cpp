// The text of MOF diagnostics.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofError.h"

#include <utility>

namespace {

// The blanks before the caret: tabs stay tabs, so that it stands where the
// reader's terminal puts the fault.
std::string indentation(const std::string& sourceLine, QORuint32 characters) {
  std::string blanks;
  for (std::size_t i = 0; i < sourceLine.size() && characters > 0; ++i) {
    const bool continuesCharacter = (static_cast<unsigned char>(sourceLine[i]) & 0xC0U) == 0x80U;
    if (continuesCharacter) continue;
    blanks += sourceLine[i] == '\t' ? '\t' : ' ';
    --characters;
  }
  blanks.append(characters, ' ');
  return blanks;
}

QORString textOf(const std::vector<MofDiagnostic>& diagnostics) {
  std::string text;
  for (const MofDiagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += '\n';
    text += diagnostic.toText();
  }
  return QORString(std::string_view(text));
}

}  // namespace

std::string MofDiagnostic::toText() const {
  if (line == 0) return file + ": " + message;
  std::string text = file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + message;
  text += "\n  " + sourceLine + "\n  " + indentation(sourceLine, caret) + '^';
  return text;
}

MofException::MofException(std::vector<MofDiagnostic> diagnostics)
    : QoriBaseException("MOF", "MOF", "", textOf(diagnostics), 4), _diagnostics(std::move(diagnostics)) {}

MofException::~MofException() = default;
