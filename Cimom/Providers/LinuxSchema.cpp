// The schema of the live Linux classes, as MOF text.
// Tested by tests/unit/Providers/LinuxProvidersTest.cpp.
#include "Cimom/Providers/LinuxProviders.h"

static const char* const kSchema = R"mof(
Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(EnableOverride, Restricted);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
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

[Abstract, Description("A part of a system that can be switched on and off.")]
class CIM_EnabledLogicalElement : CIM_LogicalElement {
};

[Abstract, Description("A part of a system that can be given to users.")]
class CIM_AllocatedLogicalElement : CIM_EnabledLogicalElement {
};

[Description("A running program.")]
class CIM_Process : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string CSCreationClassName;
  [Key, Description("The name of the computer.")] string CSName;
  [Key, Description("The class of the operating system.")] string OSCreationClassName;
  [Key, Description("The name of the operating system.")] string OSName;
  [Key, Description("The class of the process.")] string CreationClassName;
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
class CIM_FileSystem : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string CSCreationClassName;
  [Key, Description("The name of the computer.")] string CSName;
  [Key, Description("The class of the file system.")] string CreationClassName;
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
class CIM_OperatingSystem : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string CSCreationClassName;
  [Key, Description("The name of the computer.")] string CSName;
  [Key, Description("The class of the operating system.")] string CreationClassName;
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
class CIM_LogicalDevice : CIM_AllocatedLogicalElement {
  [Key, Description("The class of the computer.")] string SystemCreationClassName;
  [Key, Description("The name of the computer.")] string SystemName;
  [Key, Description("The class of the device.")] string CreationClassName;
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

[Description("A connection of a device.")]
class CIM_LogicalPort : CIM_LogicalDevice {
  [Description("In bits a second; NULL when it is not connected.")] uint64 Speed;
};

[Description("A connection to a network.")]
class CIM_NetworkPort : CIM_LogicalPort {
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
)mof"
                                   R"mof(
[Description("Storage that can be addressed by blocks.")]
class CIM_StorageExtent : CIM_LogicalDevice {
  [Description("The size of a block, in bytes.")] uint64 BlockSize;
  [Description("How many blocks there are.")] uint64 NumberOfBlocks;
};

[Description("A disk, a partition, or a device that is built of them, of this machine. Its DeviceID is the path of its node.")]
class Linux_BlockDevice : CIM_StorageExtent {
  [Description("disk or partition.")] string DeviceType;
  [Description("The numbers by which the kernel knows it: major:minor.")] string DeviceNumber;
  [Description("The disk that it is a partition of; NULL for what is none.")] string Disk;
  [Description("In bytes.")] uint64 Size;
  [Description("Whether it cannot be written.")] boolean ReadOnly;
  [Description("Whether it can be taken out.")] boolean IsRemovable;
  [Description("Whether it turns.")] boolean IsRotational;
  [Description("Who made it.")] string Vendor;
  [Description("What the maker calls it.")] string Model;
  [Description("The maker's number of it; NULL where udev does not run.")] string SerialNumber;
  [Description("What file system is on it; NULL without one and where udev does not run.")] string FileSystemType;
  [Description("The name of the file system on it.")] string FileSystemLabel;
  [Description("The number of the file system on it.")] string FileSystemUUID;
  [Description("Bytes read since the start.")] uint64 BytesRead;
  [Description("Bytes written since the start.")] uint64 BytesWritten;
};

[Description("A place at which a service can be had.")]
class CIM_ServiceAccessPoint : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string SystemCreationClassName;
  [Key, Description("The name of the computer.")] string SystemName;
  [Key, Description("The class of the access point.")] string CreationClassName;
  [Key, Override("Name"), Description("The name that tells it from others of its class.")] string Name;
};

[Description("An end of a connection.")]
class CIM_ProtocolEndpoint : CIM_ServiceAccessPoint {
  [Description("4111 TCP, 4112 UDP.")] uint16 ProtocolIFType;
};

[Description("A port of this machine on which a program waits.")]
class Linux_ListeningPort : CIM_ProtocolEndpoint {
  [Description("tcp or udp.")] string Protocol;
  [Description("The address of this machine; 0.0.0.0 and :: stand for all.")] string LocalAddress;
  [Description("The number of the port.")] uint32 PortNumber;
  [Description("Whether the address is one of IPv6.")] boolean IsIPv6;
  [Description("The number of the user who opened it.")] uint32 UserNumber;
  [Description("The process that waits, of several the first; NULL without permission.")] uint32 ProcessID;
};

[Description("What lets a user use a system.")]
class CIM_Account : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string SystemCreationClassName;
  [Key, Description("The name of the computer.")] string SystemName;
  [Key, Description("The class of the account.")] string CreationClassName;
  [Key, Override("Name"), Description("The user's name.")] string Name;
  [Description("The user's number.")] string UserID;
};

[Description("A user of this machine.")]
class Linux_User : CIM_Account {
  [Description("The user's number, as a number.")] uint32 UserNumber;
  [Description("The number of the user's primary group.")] uint32 GroupNumber;
  [Description("The name of the person.")] string FullName;
  [Description("The folder in which the user starts.")] string HomeFolder;
  [Description("The program with which the user starts.")] string Shell;
};

[Abstract, Description("What holds other things together.")]
class CIM_Collection : CIM_ManagedElement {
};

[Description("A group of users.")]
class CIM_Group : CIM_Collection {
  [Key, Description("The class of the group.")] string CreationClassName;
  [Key, Description("The name of the group.")] string Name;
  [Description("The name by which it is known.")] string CommonName;
};

[Description("A group of this machine.")]
class Linux_Group : CIM_Group {
  [Description("The group's number.")] uint32 GroupNumber;
  [Description("Its members, without those whose primary group it is.")] string Members[];
};

[Description("What a system does for others.")]
class CIM_Service : CIM_EnabledLogicalElement {
  [Key, Description("The class of the computer.")] string SystemCreationClassName;
  [Key, Description("The name of the computer.")] string SystemName;
  [Key, Description("The class of the service.")] string CreationClassName;
  [Key, Override("Name"), Description("The name of the service.")] string Name;
  [Description("Automatic: it starts with the system; Manual: it does not.")] string StartMode;
  [Description("Whether it does its work.")] boolean Started;
};

[Description("A service that systemd manages.")]
class Linux_Service : CIM_Service {
  [Description("Whether systemd could read it: loaded, masked, error, ...")] string LoadState;
  [Description("active, inactive, failed, ...")] string ActiveState;
  [Description("What that means for a service: running, exited, dead, ...")] string SubState;
  [Description("enabled, disabled, static, ...; NULL when it has no file.")] string UnitFileState;
  [Description("Its main process; NULL when it has none.")] uint32 MainProcessID;
};

[Association, Abstract, Description("One element needs another.")]
class CIM_Dependency {
  [Key, Description("What is needed.")] CIM_ManagedElement REF Antecedent;
  [Key, Description("What needs it.")] CIM_ManagedElement REF Dependent;
};

[Association, Description("Which user a process runs as.")]
class Linux_ProcessOwner : CIM_Dependency {
  [Override("Antecedent"), Description("The effective user.")] Linux_User REF Antecedent;
  [Override("Dependent"), Description("The process.")] Linux_Process REF Dependent;
};

[Association, Description("On which ports a process waits.")]
class Linux_ProcessPort : CIM_Dependency {
  [Override("Antecedent"), Description("The process.")] Linux_Process REF Antecedent;
  [Override("Dependent"), Description("The port.")] Linux_ListeningPort REF Dependent;
};

[Association, Description("On which storage something is kept.")]
class CIM_ResidesOnExtent : CIM_Dependency {
  [Override("Antecedent"), Description("The storage.")] CIM_StorageExtent REF Antecedent;
  [Override("Dependent"), Description("What is kept there.")] CIM_LogicalElement REF Dependent;
};

[Association, Description("On which device a file system is.")]
class Linux_FileSystemDevice : CIM_ResidesOnExtent {
  [Override("Antecedent"), Description("The device.")] Linux_BlockDevice REF Antecedent;
  [Override("Dependent"), Description("The file system.")] Linux_FileSystem REF Dependent;
};

[Association, Description("What a collection holds together.")]
class CIM_MemberOfCollection {
  [Key, Description("The collection.")] CIM_Collection REF Collection;
  [Key, Description("What belongs to it.")] CIM_ManagedElement REF Member;
};

[Association, Description("Which users are in a group.")]
class Linux_GroupMember : CIM_MemberOfCollection {
  [Override("Collection"), Description("The group.")] Linux_Group REF Collection;
  [Override("Member"), Description("The user.")] Linux_User REF Member;
};

[Association, Description("The processes in which a service runs.")]
class CIM_ServiceProcess {
  [Key, Description("The service.")] CIM_Service REF Service;
  [Key, Description("The process.")] CIM_Process REF Process;
};

[Association, Description("The main process of a service.")]
class Linux_ServiceProcess : CIM_ServiceProcess {
  [Override("Service"), Description("The service.")] Linux_Service REF Service;
  [Override("Process"), Description("The process.")] Linux_Process REF Process;
};
)mof";

const char* linuxSchemaMof() { return kSchema; }
