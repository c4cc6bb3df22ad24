// The schema of the live Linux classes, as MOF text.
#include "Cimom/Providers/LinuxProviders.h"

static const char* const kSchema = R"mof(
Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(EnableOverride, Restricted);
Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Override : string = null, Scope(property, method, reference), Flavor(EnableOverride, Restricted);

[Abstract, Description("Anything that is managed.")]
class CIM_ManagedElement {
  [Description("A short text for a person.")] string Caption;
  [Description("A text for a person.")] string Description;
  [Description("The name that users gave it.")] string ElementName;
};

[Abstract, Description("A part of a system.")]
class CIM_ManagedSystemElement : CIM_ManagedElement {
  [Description("When it was installed.")] datetime InstallDate;
  [Description("The name by which it is known.")] string Name;
};

[Abstract, Description("A part of a system that one cannot touch.")]
class CIM_LogicalElement : CIM_ManagedSystemElement {
};

[Description("A running program.")]
class CIM_Process : CIM_LogicalElement {
  [Key, Description("The process id.")] string Handle;
  [Description("0 is the most urgent.")] uint32 Priority;
  [Description("0 unknown, 3 running, 4 blocked, 7 terminated, 8 stopped.")] uint16 ExecutionState;
  [Description("When the process began.")] datetime CreationDate;
  [Description("Processor time inside the kernel, in milliseconds.")] uint64 KernelModeTime;
  [Description("Processor time outside the kernel, in milliseconds.")] uint64 UserModeTime;
  [Description("Memory that is resident, in bytes.")] uint64 WorkingSetSize;
};

[Description("A process of this machine.")]
class Linux_Process : CIM_Process {
  [Description("The process id as a number.")] uint32 ProcessID;
  [Description("The process that began this one.")] uint32 ParentProcessID;
  [Description("The arguments, joined by blanks; NULL for a kernel thread.")] string CommandLine;
  [Description("Path of the program; NULL for a kernel thread and without permission.")] string Executable;
  [Description("The effective user.")] string OwnerUser;
  [Description("Running, Sleeping, Waiting, Idle, Stopped, Traced, Zombie or Dead.")] string State;
  [Description("-20 (most urgent) to 19.")] sint32 Nice;
  [Description("Number of threads.")] uint32 ThreadCount;
  [Description("The session it belongs to.")] uint32 SessionID;
  [Description("The address space, in bytes.")] uint64 VirtualMemorySize;
  [Description("Read from storage, in bytes; NULL without permission.")] uint64 BytesRead;
  [Description("Written to storage, in bytes; NULL without permission.")] uint64 BytesWritten;
};

[Description("A file system that is mounted.")]
class CIM_FileSystem : CIM_LogicalElement {
  [Key, Override("Name"), Description("The mount point.")] string Name;
  [Description("The folder of the file system that is mounted.")] string Root;
  [Description("The preferred size of a transfer, in bytes.")] uint64 BlockSize;
  [Description("In bytes.")] uint64 FileSystemSize;
  [Description("What users may still write, in bytes.")] uint64 AvailableSpace;
  [Description("Whether it cannot be written.")] boolean ReadOnly;
  [Description("The greatest length of a file's name.")] uint32 MaxFileNameLength;
  [Description("The kind of file system.")] string FileSystemType;
  [Description("Files, folders and the like in it.")] uint64 NumberOfFiles;
};

[Description("A mounted file system of this machine.")]
class Linux_FileSystem : CIM_FileSystem {
  [Description("What is mounted: a device, an address or a name.")] string Device;
  [Description("The options of the mount, joined by commas.")] string MountOptions;
  [Description("Whether it comes over the network.")] boolean IsNetwork;
  [Description("Whether the kernel makes it up.")] boolean IsPseudo;
  [Description("In bytes.")] uint64 UsedSpace;
  [Description("Used part of what users may use, in percent; NULL where there is no space.")] real64 PercentUsed;
};

[Description("An operating system.")]
class CIM_OperatingSystem : CIM_LogicalElement {
  [Key, Override("Name"), Description("The name of the distribution.")] string Name;
  [Description("The version of the distribution.")] string Version;
  [Description("When the kernel was started.")] datetime LastBootUpTime;
  [Description("The time now.")] datetime LocalDateTime;
  [Description("Minutes east of Greenwich.")] sint16 CurrentTimeZone;
  [Description("Number of processes.")] uint32 NumberOfProcesses;
  [Description("In KiB.")] uint64 TotalSwapSpaceSize;
  [Description("Memory and swap space, in KiB.")] uint64 TotalVirtualMemorySize;
  [Description("Free memory and free swap space, in KiB.")] uint64 FreeVirtualMemory;
  [Description("Memory that nothing uses, in KiB.")] uint64 FreePhysicalMemory;
  [Description("In KiB.")] uint64 TotalVisibleMemorySize;
  [Description("Free swap space, in KiB.")] uint64 FreeSpaceInPagingFiles;
};

[Description("The operating system of this machine.")]
class Linux_OperatingSystem : CIM_OperatingSystem {
  [Description("The name of the kernel.")] string KernelName;
  [Description("The release of the kernel.")] string KernelRelease;
  [Description("The build of the kernel.")] string KernelVersion;
  [Description("The kind of machine.")] string Architecture;
  [Description("The machine's name in the network.")] string HostName;
  [Description("Processors in use.")] uint32 NumberOfProcessors;
  [Description("Memory that programs could still have, in KiB.")] uint64 AvailableMemory;
  [Description("Processes that want to run, on average over the last 1, 5 and 15 minutes.")] real64 LoadAverage[];
};

[Abstract, Description("A part of a system that does work, real or not.")]
class CIM_LogicalDevice : CIM_LogicalElement {
  [Key, Description("The name that tells it from others of its class.")] string DeviceID;
};

[Description("A processor.")]
class CIM_Processor : CIM_LogicalDevice {
  [Description("In megahertz.")] uint32 CurrentClockSpeed;
};

[Description("A processor of this machine.")]
class Linux_Processor : CIM_Processor {
  [Description("Who made it.")] string Vendor;
  [Description("Time in programs since the start, in milliseconds.")] uint64 UserModeTime;
  [Description("Time in the kernel since the start, in milliseconds.")] uint64 KernelModeTime;
  [Description("Time without work since the start, in milliseconds.")] uint64 IdleTime;
  [Description("Time without work but for storage since the start, in milliseconds.")] uint64 WaitTime;
};

[Description("A connection to a network.")]
class CIM_NetworkPort : CIM_LogicalDevice {
  [Description("In bits a second; NULL when it is not connected.")] uint64 Speed;
  [Description("The hardware address.")] string PermanentAddress;
  [Description("The addresses by which it is reached.")] string NetworkAddresses[];
  [Description("The greatest packet, in bytes.")] uint64 ActiveMaximumTransmissionUnit;
};

[Description("A network interface of this machine.")]
class Linux_NetworkPort : CIM_NetworkPort {
  [Description("What the kernel says of it: up, down, unknown, ...")] string State;
  [Description("Whether it is switched on.")] boolean IsUp;
  [Description("Whether it leads back to this machine.")] boolean IsLoopback;
  [Description("Bytes received.")] uint64 BytesReceived;
  [Description("Bytes transmitted.")] uint64 BytesTransmitted;
  [Description("Packets received.")] uint64 PacketsReceived;
  [Description("Packets transmitted.")] uint64 PacketsTransmitted;
  [Description("Errors of either direction.")] uint64 Errors;
};
)mof";

const char* linuxSchemaMof() { return kSchema; }
