// One validated statement asked by many threads at once; run under the thread
// sanitizer too.
// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <functional>
#include <thread>

#include "FilterWorld.h"

namespace {

constexpr int kThreads = 6;
constexpr int kRounds = 300;

void onThreads(const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

struct Question {
  std::string filter;
  std::vector<bool> answers;  // for each instance
};

struct FilterThreads : Filter {
  std::vector<QORSmrPtr<IQoriObject>> instances{
      world.alert("U8 = 5; MessageID = \"FC1\"; A = {1, 2, 17};"), world.alert("U8 = 6; MessageID = \"FC2\"; A = {};"),
      world.indication("instance of CIM_InstCreation { SourceInstance = \"instance of XYZ_Volume { Id = \\\"v\\\"; "
                       "OperationalStatus = {2, 17}; };\"; };"),
      world.indication("instance of CIM_InstModification { SourceInstance = \"instance of CIM_FCPort { Id = \\\"p\\\"; "
                       "};\"; };")};
  std::vector<Question> questions{
      {"SELECT * FROM CIM_AlertIndication WHERE U8 = 5 AND MessageID = 'FC1'", {true, false, false, false}},
      {"SELECT * FROM CIM_AlertIndication WHERE ANY A[*] = 17", {true, false, false, false}},
      {"SELECT * FROM CIM_AlertIndication WHERE A[1] = 2 AND U8 + 1 = 6", {true, false, false, false}},
      {"SELECT * FROM CIM_InstIndication WHERE SourceInstance ISA CIM_StorageVolume", {false, false, true, false}},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance.CIM_StorageVolume::OperationalStatus[1] = 17",
       {false, false, true, false}},
      {"SELECT * FROM CIM_Indication", {true, true, true, true}}};
};

TEST_F(FilterThreads, OneStatementAnswersManyThreads) {
  const QORString nameSpace(kNameSpace);
  for (const Question& question : questions) {
    CQLQueryStatement statement("DMTF:CQL", QORString(question.filter), nameSpace, nameSpace);
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << question.filter;
    std::atomic<int> wrong{0};
    onThreads([&](int thread) {
      for (int round = 0; round < kRounds; ++round) {
        const std::size_t i = static_cast<std::size_t>(thread + round) % instances.size();
        if (statement.isMatch(instances[i], nameSpace) != question.answers[i]) ++wrong;
        std::string why;
        if (round % 50 == 0 && statement.explainMatch(instances[i], nameSpace, why) != why.empty()) ++wrong;
        if (round % 50 == 1 && statement.getClassList()->entries() != 1) ++wrong;
      }
    });
    EXPECT_EQ(wrong, 0) << question.filter;
  }
}

TEST_F(FilterThreads, MatchingGoesOnWhileClassesAndInstancesAreLoaded) {
  const QORString nameSpace(kNameSpace);
  CQLQueryStatement statement("CQL", QORString(questions[3].filter), nameSpace, nameSpace);
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  std::atomic<int> wrong{0};
  onThreads([&](int thread) {
    for (int round = 0; round < kRounds / 10; ++round) {
      if (thread == 0) {
        const std::string name = "XYZ_New" + std::to_string(round);
        MofLoader(world.manager().sink(), nameSpace)
            .loadText("class " + name + " : CIM_FCPort { }; instance of " + name + " { Id = \"1\"; };", "more");
      } else if (!statement.isMatch(instances[2], nameSpace) || statement.isMatch(instances[3], nameSpace)) {
        ++wrong;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST_F(FilterThreads, EachThreadValidatesStatementsOfItsOwn) {
  const QORString nameSpace(kNameSpace);
  std::atomic<int> wrong{0};
  onThreads([&](int thread) {
    for (int round = 0; round < 10; ++round) {
      const Question& question = questions[static_cast<std::size_t>(thread + round) % questions.size()];
      CQLQueryStatement statement("CQL", QORString(question.filter), nameSpace, nameSpace);
      if (statement.validate() != QUERY_VALIDATE_SUCCESS) ++wrong;
      for (std::size_t i = 0; i < instances.size(); ++i) {
        if (statement.isMatch(instances[i], nameSpace) != question.answers[i]) ++wrong;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
}

}  // namespace
