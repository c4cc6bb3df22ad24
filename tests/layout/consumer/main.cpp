// Uses one thing of each library, so that both must be there to link and to start.
#include <cstdio>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/QORQL_Lexer.h"

int main() {
  const QORString text("SELECT Name FROM CIM_Disk");
  QORQL_Lexer lexer(text, false);
  EmbeddedObjectManager manager;
  std::printf("%s in %s\n", lexer.getCurrent().getValue().c_str(), EmbeddedObjectManager::kDefaultNamespace);
  return lexer.getCurrent().getType() == TokenSELECT ? 0 : 1;
}
