// The schema of the common indications, as MOF text.
// Tested by tests/cli/match_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_INDICATIONSCHEMA_H
#define QORQL_PROVIDERS_INDICATIONSCHEMA_H

// The qualifiers and the CIM indication classes in short form: alerts, and the
// creation, modification and deletion of instances. A program that loads a
// fuller CIM schema first loads this text through LinuxSchemaSink, which leaves
// alone what is there already.
const char* indicationSchemaMof();

#endif
