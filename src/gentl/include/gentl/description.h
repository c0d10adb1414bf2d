// Device descriptions: found through a port's URLs or in a file, unpacked, and made into node maps.
#pragma once

#include <memory>
#include <string>

#include "gentl/port.h"

namespace GenTLCpp {

/**
 * The description that the first usable URL of the port leads to.
 *
 * @throws std::runtime_error when no URL leads to one; what reading the last unreadable URL threw, if one was
 */
GenICam::gcstring retrieveXML(Port& port);

/** The description in a file; a zipped one is unpacked. Empty when the file cannot be read. */
GenICam::gcstring readDescriptionFile(const std::string& path);

/** A node map connected to the port under the port's name; empty when it has no such port node.
 * @throws GenICam::GenericException when the text is no description */
NodeMapPtr makeNodeMap(const GenICam::gcstring& xml, const std::shared_ptr<ConcretePort>& port);

}  // namespace GenTLCpp
