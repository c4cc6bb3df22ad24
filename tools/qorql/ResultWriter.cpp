// The choice of a writer.
#include "ResultWriter.h"

#include "CsvWriter.h"
#include "HtmlWriter.h"
#include "JsonWriter.h"
#include "TableWriter.h"

std::unique_ptr<ResultWriter> makeResultWriter(OutputForm form, std::ostream& out) {
  if (form == OutputForm::Csv) return std::make_unique<CsvWriter>(out);
  if (form == OutputForm::Json) return std::make_unique<JsonWriter>(out);
  if (form == OutputForm::Html) return std::make_unique<HtmlWriter>(out);
  return std::make_unique<TableWriter>(out);
}
