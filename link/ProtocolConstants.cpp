#include "link/ProtocolConstants.h"

namespace VLM {

const std::string targetApplication = "InDn";
const std::string targetClass = "VLM4";
const std::string versionNumber = "1.00";

const std::string vellumineSignature = "VLMQ";
const std::string vellumineIdentifier = "org.vellumine.Vellumine";
const std::string libraryChangedNotification = vellumineIdentifier + ".FontLibraryChanged";

const std::string requestEventClass = "VLMQ";
const std::string requestEventID = "****";
const std::string fontSetChangedEventID = "FSBC";
const std::string fontFileSetChangedEventID = "FFSC";

const std::string fontChangedCommand = "<cmd cmd=\"fontChanged\"></cmd>";

} // namespace VLM
