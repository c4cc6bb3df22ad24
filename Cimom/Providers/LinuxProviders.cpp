// Registration of the Linux providers and of the schema they need.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProviders.h"

#include <algorithm>

#include "Cimom/Providers/LinuxBlockDevice.h"
#include "Cimom/Providers/LinuxComputerSystem.h"
#include "Cimom/Providers/LinuxCronEntry.h"
#include "Cimom/Providers/LinuxFileSystem.h"
#include "Cimom/Providers/LinuxFileSystemDevice.h"
#include "Cimom/Providers/LinuxGroup.h"
#include "Cimom/Providers/LinuxGroupMember.h"
#include "Cimom/Providers/LinuxKernelModule.h"
#include "Cimom/Providers/LinuxListeningPort.h"
#include "Cimom/Providers/LinuxLogin.h"
#include "Cimom/Providers/LinuxNetworkPort.h"
#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxPackage.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "Cimom/Providers/LinuxProcessOwner.h"
#include "Cimom/Providers/LinuxProcessPort.h"
#include "Cimom/Providers/LinuxProcessor.h"
#include "Cimom/Providers/LinuxRoute.h"
#include "Cimom/Providers/LinuxService.h"
#include "Cimom/Providers/LinuxServiceProcess.h"
#include "Cimom/Providers/LinuxSocket.h"
#include "Cimom/Providers/LinuxTimer.h"
#include "Cimom/Providers/LinuxUser.h"

void registerLinuxProviders(EmbeddedObjectManager& manager, const QORString& nameSpace,
                            const std::vector<std::string>& except) {
  const std::shared_ptr<InstanceProvider> providers[] = {std::make_shared<LinuxProcess>(),
                                                         std::make_shared<LinuxFileSystem>(),
                                                         std::make_shared<LinuxOperatingSystem>(),
                                                         std::make_shared<LinuxProcessor>(),
                                                         std::make_shared<LinuxNetworkPort>(),
                                                         std::make_shared<LinuxBlockDevice>(),
                                                         std::make_shared<LinuxListeningPort>(),
                                                         std::make_shared<LinuxSocket>(),
                                                         std::make_shared<LinuxComputerSystem>(),
                                                         std::make_shared<LinuxCronEntry>(),
                                                         std::make_shared<LinuxKernelModule>(),
                                                         std::make_shared<LinuxLogin>(),
                                                         std::make_shared<LinuxPackage>(),
                                                         std::make_shared<LinuxRoute>(),
                                                         std::make_shared<LinuxTimer>(),
                                                         std::make_shared<LinuxUser>(),
                                                         std::make_shared<LinuxGroup>(),
                                                         std::make_shared<LinuxService>(),
                                                         std::make_shared<LinuxProcessOwner>(),
                                                         std::make_shared<LinuxProcessPort>(),
                                                         std::make_shared<LinuxFileSystemDevice>(),
                                                         std::make_shared<LinuxGroupMember>(),
                                                         std::make_shared<LinuxServiceProcess>()};
  for (const std::shared_ptr<InstanceProvider>& provider : providers) {
    const bool isDeclared = !manager.sink().findClass(nameSpace, provider->getClassName()).IsNull();
    const bool isExcepted = std::any_of(except.begin(), except.end(), [&provider](const std::string& name) {
      return provider->getClassName().isEqualCaseInsensitive(QORString(name));
    });
    if (isDeclared && !isExcepted) manager.registerProvider(nameSpace, provider);
  }
}

void LinuxSchemaSink::declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) {
  CimQualifierDeclaration existing;
  if (!_target.describeQualifier(nameSpace, declaration.name, existing)) {
    _target.declareQualifier(nameSpace, declaration);
  }
}

void LinuxSchemaSink::declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) {
  if (_target.findClass(nameSpace, declaration.name).IsNull()) _target.declareClass(nameSpace, declaration);
}
