#include <expat.h>

#include <memory>

#include "xml_reader.h"

using namespace fleet;

namespace {

struct Reading {
    XML_Parser parser;
    XmlVisitor& visitor;
};

}  // namespace

static XmlVisitor& visitorOf(void* userData) {
    return static_cast<const Reading*>(userData)->visitor;
}

static void stopUnless(bool goOn, void* userData) {
    if (!goOn) {
        XML_StopParser(static_cast<const Reading*>(userData)->parser, XML_FALSE);
    }
}

static void startElement(void* userData, const char* name, const char** attributes) {
    XmlAttributes list;
    for (; attributes[0] != nullptr; attributes += 2) {
        list.emplace_back(attributes[0], attributes[1]);
    }
    stopUnless(visitorOf(userData).startElement(name, list), userData);
}

static void endElement(void* userData, const char* /*name*/) {
    stopUnless(visitorOf(userData).endElement(), userData);
}

static void text(void* userData, const char* piece, int length) {
    stopUnless(visitorOf(userData).text({piece, static_cast<size_t>(length)}), userData);
}

static void refuseDocumentType(void* userData, const char* /*name*/, const char* /*systemId*/, const char* /*publicId*/,
                               int /*hasInternalSubset*/) {
    stopUnless(false, userData);
}

bool fleet::readXml(std::string_view document, XmlVisitor& visitor) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                              XML_ParserFree);
    if (parser == nullptr) {
        return false;
    }
    Reading reading{parser.get(), visitor};
    XML_SetUserData(parser.get(), &reading);
    XML_SetElementHandler(parser.get(), startElement, endElement);
    XML_SetCharacterDataHandler(parser.get(), text);
    XML_SetStartDoctypeDeclHandler(parser.get(), refuseDocumentType);
    return XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK;
}
