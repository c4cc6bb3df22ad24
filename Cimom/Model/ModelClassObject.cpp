// A class definition as the value of an embedded object.
#include "Cimom/Model/ModelClassObject.h"

ModelClassObject::~ModelClassObject() = default;
