// Fuzz target: a filter with an indication. The part of the input before the
// separator is the filter, the part after it MOF text with instances; without
// one the filter meets indications of each kind. The prepared conditions and the
// walk of the tree come to the same answer.
// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "FuzzInput.h"
#include "QueryRun.h"
#include "cimom/CQoriInstanceName.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
using Instances = std::vector<QORSmrPtr<IQoriObject>>;

Instances read(QueryRun& world, const std::string& mof) {
  return MofLoader(world.manager().sink(), kNameSpace).readInstances(mof, "indication");
}

void match(const CQLQueryStatement& filter, const QORSmrPtr<IQoriObject>& instance) {
  const bool isMatch = filter.isMatch(instance, kNameSpace);
  fuzzRequire(isMatch == filter.isMatch(instance, kNameSpace), "an instance matches sometimes");
  const bool isOfClass = filter.isMatchFromClause(instance);
  const bool holds = filter.isMatchWhereClause(instance);
  fuzzRequire(isMatch == (isOfClass && holds), "the prepared conditions and the walk of the tree agree");
  std::string why;
  fuzzRequire(filter.explainMatch(instance, kNameSpace, why) == isMatch, "the explanation and the answer agree");
  fuzzRequire(isMatch || !why.empty(), "a refusal has a reason");
}

void listProperties(const CQLQueryStatement& filter) {
  const CQLQueryStatement::ClassList classes(filter.getClassList());
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> names(*classes);
  while (++names) {
    filter.getPropertyList(names.key());
    filter.getSelectPropertyList(names.key());
    filter.getWherePropertyList(names.key());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static QueryRun world(fuzzFile("tests/fuzz/models/indications.mof"));
  static const Instances common = read(world, fuzzFile("tests/fuzz/models/happened.mof"));
  const auto [text, mof] = fuzzParts(fuzzText(data, size));
  CQLQueryStatement filter("CQL", QORString(text.data(), text.size()), kNameSpace, "");
  if (filter.validate() != QUERY_VALIDATE_SUCCESS) {
    fuzzRequire(!filter.getFault().message.isEmpty(), "a refused filter has a reason");
    return 0;
  }
  listProperties(filter);
  Instances instances;
  try {
    if (!mof.empty()) instances = read(world, mof);
  } catch (const MofException&) {
    return 0;
  }
  for (const QORSmrPtr<IQoriObject>& instance : mof.empty() ? common : instances) match(filter, instance);
  return 0;
}
