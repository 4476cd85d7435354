#include <expat.h>

#include <memory>

#include "xml_reader.h"

using namespace fleet;

namespace {

struct Reading {
    XML_Parser parser;
    XmlVisitor& visitor;
    bool isStopped;
};

}  // namespace

// Has the visitor look at a piece of the document. Expat still reports the end of an empty element after the reading was
// stopped at its start; the visitor does not see that.
template <typename Visit> static void visit(void* userData, Visit look) {
    Reading& reading = *static_cast<Reading*>(userData);
    if (!reading.isStopped && !look(reading.visitor)) {
        reading.isStopped = true;
        XML_StopParser(reading.parser, XML_FALSE);
    }
}

static void startElement(void* userData, const char* name, const char** attributes) {
    XmlAttributes list;
    for (; attributes[0] != nullptr; attributes += 2) {
        list.emplace_back(attributes[0], attributes[1]);
    }
    visit(userData, [&](XmlVisitor& visitor) { return visitor.startElement(name, list); });
}

static void endElement(void* userData, const char* /*name*/) {
    visit(userData, [](XmlVisitor& visitor) { return visitor.endElement(); });
}

static void text(void* userData, const char* piece, int length) {
    visit(userData, [&](XmlVisitor& visitor) { return visitor.text({piece, static_cast<size_t>(length)}); });
}

static void refuseDocumentType(void* userData, const char* /*name*/, const char* /*systemId*/, const char* /*publicId*/,
                               int /*hasInternalSubset*/) {
    visit(userData, [](XmlVisitor& /*visitor*/) { return false; });
}

bool fleet::readXml(std::string_view document, XmlVisitor& visitor) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                              XML_ParserFree);
    if (parser == nullptr) {
        return false;
    }
    Reading reading{parser.get(), visitor, false};
    XML_SetUserData(parser.get(), &reading);
    XML_SetElementHandler(parser.get(), startElement, endElement);
    XML_SetCharacterDataHandler(parser.get(), text);
    XML_SetStartDoctypeDeclHandler(parser.get(), refuseDocumentType);
    return XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK;
}
