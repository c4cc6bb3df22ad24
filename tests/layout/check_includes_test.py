"""Proves that check_includes.py finds each kind of wrong include and lets the right ones pass."""
# SPDX-License-Identifier: Apache-2.0
import sys
import unittest

import check_includes
import made_up_tree

RIGHT = {
    "include/cmpbase.h": '#include <cstddef>\n#include "cmpbase/QORTypes.h"\n',
    "include/cmpbase/QORTypes.h": "#include <cstdint>\n",
    "Cimom/QORQL/QORQL_A.h": '#include "cmpbase.h"\n#include <cstddef>\n',
    "Cimom/QORQL/QORQL_A.cpp": '#include "Cimom/QORQL/QORQL_A.h"\n',
    "Cimom/QORQL/Lazy/QORQL_L.h": '#include "Cimom/QORQL/QORQL_A.h"\n',
    "Cimom/QORQL/Lazy/QORQL_L.cpp": '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n',
    "Cimom/QORQL/Out/QORQL_O.h": '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n',
    "Cimom/QORQL/Run/QORQL_R.cpp": '#include "Cimom/QORQL/Out/QORQL_O.h"\n',
    "Cimom/QORQL/Explain/QORQL_E.h": '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n',
    "Cimom/QORQL/Face/QORQL_S.h": '#include "Cimom/QORQL/Out/QORQL_O.h"\n#include "Cimom/QORQL/Explain/QORQL_E.h"\n',
    "include/qorql.h": '#include "Cimom/QORQL/Face/QORQL_S.h"\n#include "Cimom/QORQL/QORQL_A.h"\n#include "cmpbase.h"\n',
    "Cimom/QORQL/Filter/CQLF.h": '#include "Cimom/QORQL/QORQL_A.h"\n',
    "Cimom/Model/M.h": '#include "cmpbase.h"\n',
    "Cimom/Embedded/CimDeclarations.h": '#include "Cimom/Model/M.h"\n',
    "Cimom/Embedded/Store.h": '#include "Cimom/Embedded/CimDeclarations.h"\n#include <ini.h>\n',
    "Cimom/Mof/Reader.cpp": '#include "Cimom/Embedded/CimDeclarations.h"\n',
    "Cimom/Providers/P.cpp": '#include "Cimom/Embedded/Store.h"\n#include <unistd.h>\n',
    "tools/qorql/main.cpp": '#include "Cimom/QORQL/QORQL_A.h"\n',
    "tests/unit/Mof/T.cpp": '#include <gtest/gtest.h>\n#include "Cimom/Embedded/Store.h"\n',
}

# A file that breaks a rule, its text, and what the message must say.
WRONG = [
    ("include/cimom/X.h", '#include "Cimom/Model/M.h"\n', "include/cimom/X.h:1: Cimom/Model/M.h may not"),
    ("include/cimom/X.h", "#include <unistd.h>\n", "<unistd.h> is not the standard library's"),
    ("Cimom/QORQL/Q.cpp", '\n#include "Cimom/Model/M.h"\n', "Cimom/QORQL/Q.cpp:2: Cimom/Model/M.h may not"),
    ("Cimom/QORQL/Q.cpp", '#include "Cimom/Embedded/Store.h"\n', "the engine knows an object manager by its interface"),
    ("Cimom/QORQL/Q.cpp", '#include "../Model/M.h"\n', "Cimom/Model/M.h may not"),
    ("Cimom/QORQL/Q.cpp", '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n', "its language none of its rooms"),
    ("Cimom/QORQL/Lazy/M.cpp", '#include "Cimom/QORQL/Out/QORQL_O.h"\n', "Cimom/QORQL/Out/QORQL_O.h may not"),
    ("Cimom/QORQL/Lazy/M.cpp", "#include <expat.h>\n", "<expat.h> is not the standard library's"),
    ("Cimom/QORQL/Out/P.cpp", '#include "Cimom/QORQL/Explain/QORQL_E.h"\n', "not how they came about"),
    ("Cimom/QORQL/Run/S.cpp", '#include "Cimom/QORQL/Explain/QORQL_E.h"\n', "without knowing who explains it"),
    ("Cimom/QORQL/Run/S.cpp", '#include "Cimom/QORQL/Filter/CQLF.h"\n', "apart from filters"),
    ("Cimom/QORQL/Explain/F.cpp", '#include "Cimom/QORQL/Out/QORQL_O.h"\n', "what explains a query runs none"),
    ("Cimom/QORQL/Filter/G.cpp", '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n', "filters need no tables"),
    ("Cimom/QORQL/Face/T.cpp", '#include "Cimom/QORQL/Lazy/QORQL_L.h"\n', "made of what every program may use"),
    ("Cimom/QORQL/Run/S.cpp", '#include "Cimom/QORQL/Face/QORQL_S.h"\n', "Cimom/QORQL/Face/QORQL_S.h may not"),
    ("include/qorql.h", '#include "Cimom/Model/M.h"\n', "made of its public headers"),
    ("Cimom/Foundation/F.cpp", '#include "Cimom/Model/M.h"\n', "Include only Cimom/Foundation/ and include/"),
    ("Cimom/Model/N.cpp", '#include "Cimom/Embedded/Store.h"\n', "Cimom/Embedded/Store.h may not"),
    ("Cimom/Embedded/E.cpp", '#include "Cimom/QORQL/QORQL_A.h"\n', "Cimom/QORQL/QORQL_A.h may not"),
    ("Cimom/Mof/R.cpp", '#include "Cimom/Embedded/Store.h"\n', "Cimom/Embedded/Store.h may not"),
    ("Cimom/Providers/Q.cpp", '#include "Cimom/Model/M.h"\n', "Cimom/Model/M.h may not"),
    ("tools/qorql/t.cpp", '#include "tests/unit/Mof/T.cpp"\n', "tests/unit/Mof/T.cpp may not"),
    ("bench/b.cpp", '#include "tools/qorql/main.cpp"\n', "tools/qorql/main.cpp may not"),
    ("Cimom/Model/N.cpp", '#include "nowhere.h"\n', '"nowhere.h" is not in the tree'),
    ("elsewhere/x.cpp", "#include <vector>\n", "this folder has no include rule"),
]


class CheckIncludes(made_up_tree.TreeCheck, unittest.TestCase):
    check = staticmethod(check_includes.check)
    RIGHT, WRONG = RIGHT, WRONG

    def test_headers_in_a_ring_are_found(self):
        ring = {
            "include/cimom/A.h": '#include "cimom/B.h"\n',
            "include/cimom/B.h": '#include "cimom/A.h"\n',
        }
        self.assert_one(self.run_on(ring), "include/cimom/A.h -> include/cimom/B.h -> include/cimom/A.h")


if __name__ == "__main__":
    sys.exit(unittest.main())
