// The schema of the common indications, as MOF text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/IndicationSchema.h"

static const char* const kSchema = R"mof(
Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(EnableOverride, Restricted);
Qualifier ArrayType : string = "Bag", Scope(property, parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier EmbeddedObject : boolean = false, Scope(property, method, parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Indication : boolean = false, Scope(class, indication), Flavor(DisableOverride, ToSubclass);

[Indication, Abstract, Description("Something that has happened.")]
class CIM_Indication {
  [Description("Tells it from the others of its source.")] string IndicationIdentifier;
  [Description("The identifiers of others that belong to it.")] string CorrelatedIndications[];
  [Description("When it was made.")] datetime IndicationTime;
  [Description("0 unknown, 2 information, 3 warning, 4 minor, 5 major, 6 critical, 7 fatal.")]
  uint16 PerceivedSeverity;
  [Description("The severity in words, when PerceivedSeverity is 1.")] string OtherSeverity;
  [Description("The name of the filter that it passed.")] string IndicationFilterName;
  [Description("The sequence that its number counts in.")] string SequenceContext;
  [Description("Its place in the sequence.")] sint64 SequenceNumber;
};

[Indication, Abstract, Description("Something that happened to an instance.")]
class CIM_InstIndication : CIM_Indication {
  [EmbeddedObject, Description("The instance; for one that is gone, as it was.")] string SourceInstance;
  [Description("The path of the instance.")] string SourceInstanceModelPath;
  [Description("The host that the instance lives on.")] string SourceInstanceHost;
};

[Indication, Description("An instance came into being.")]
class CIM_InstCreation : CIM_InstIndication {
};

[Indication, Description("An instance is gone.")]
class CIM_InstDeletion : CIM_InstIndication {
};

[Indication, Description("An instance changed.")]
class CIM_InstModification : CIM_InstIndication {
  [EmbeddedObject, Description("The instance as it was before.")] string PreviousInstance;
};

[Indication, Abstract, Description("Something that happened and is not a change to the model.")]
class CIM_ProcessIndication : CIM_Indication {
};

[Indication, Description("Something that somebody should know.")]
class CIM_AlertIndication : CIM_ProcessIndication {
  [Description("A text for a person.")] string Description;
  [Description("What it is about; a path when AlertingElementFormat is 2.")] string AlertingManagedElement;
  [Description("0 unknown, 1 other, 2 object path.")] uint16 AlertingElementFormat;
  [Description("The format in words, when AlertingElementFormat is 1.")] string OtherAlertingElementFormat;
  [Description("1 other, 2 communications, 3 quality of service, 4 processing, 5 device, 6 environment, "
               "7 model change, 8 security.")]
  uint16 AlertType;
  [Description("The type in words, when AlertType is 1.")] string OtherAlertType;
  [Description("The number of the probable cause.")] uint16 ProbableCause;
  [Description("The probable cause in words.")] string ProbableCauseDescription;
  [Description("0 unknown, 1 not applicable, 2 better, 3 worse, 4 no change.")] uint16 Trending;
  [Description("What to do, in order."), ArrayType("Ordered")] string RecommendedActions[];
  [Description("What kind of event it was.")] string EventID;
  [Description("When the event happened.")] datetime EventTime;
  [Description("The class of the system.")] string SystemCreationClassName;
  [Description("The name of the system.")] string SystemName;
  [Description("Who made the indication.")] string ProviderName;
  [Description("Whose message it is: an organisation.")] string OwningEntity;
  [Description("The message's identifier within OwningEntity.")] string MessageID;
  [Description("The message in words.")] string Message;
  [Description("What changes in the message from one alert to the next."), ArrayType("Ordered")]
  string MessageArguments[];
};
)mof";

const char* indicationSchemaMof() { return kSchema; }
