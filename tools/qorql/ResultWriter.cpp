// The choice of a writer.
#include "ResultWriter.h"

#include "CsvWriter.h"
#include "HtmlWriter.h"
#include "JsonWriter.h"
#include "MofWriter.h"
#include "TableWriter.h"

std::unique_ptr<ResultWriter> makeResultWriter(OutputForm form, std::ostream& out, const KeysOfClass& keysOf) {
  switch (form) {
    case OutputForm::Csv:
      return std::make_unique<CsvWriter>(out);
    case OutputForm::Json:
      return std::make_unique<JsonWriter>(out, JsonWriter::Style::Array);
    case OutputForm::JsonLines:
      return std::make_unique<JsonWriter>(out, JsonWriter::Style::Lines);
    case OutputForm::Html:
      return std::make_unique<HtmlWriter>(out);
    case OutputForm::Mof:
      return std::make_unique<MofWriter>(out, keysOf);
    case OutputForm::Table:
    case OutputForm::Xml:
      break;
  }
  return std::make_unique<TableWriter>(out);
}
