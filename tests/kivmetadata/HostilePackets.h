// Hostile and real-sized XMP packets, made at run time; shared by the tests
// and the benchmarks of packet limits.
#pragma once

#include <string>

namespace hostile {

inline std::string Packet(std::string const &body, std::string const &declarations = {})
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "  <rdf:Description rdf:about=\"\"\n"
           "    xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
           "    xmlns:crs=\"http://ns.adobe.com/camera-raw-settings/1.0/\"\n"
           "    xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"\n"
           "    xmlns:xmpMM=\"http://ns.adobe.com/xap/1.0/mm/\"\n"
           "    xmlns:stEvt=\"http://ns.adobe.com/xap/1.0/sType/ResourceEvent#\"" +
           declarations + ">\n" + body +
           "  </rdf:Description>\n"
           " </rdf:RDF>\n"
           "</x:xmpmeta>\n"
           "<?xpacket end=\"w\"?>";
}

// Bags nested `depth` deep in dc:subject.
inline std::string Deep(int depth)
{
    std::string body = "<dc:subject>";
    for (int i = 0; i < depth; ++i)
        body += "<rdf:Bag><rdf:li>";
    body += "x";
    for (int i = 0; i < depth; ++i)
        body += "</rdf:li></rdf:Bag>";
    return Packet(body + "</dc:subject>\n");
}

inline std::string Properties(int count, int first = 0)
{
    std::string body;
    for (int i = first; i < first + count; ++i) {
        std::string const name = "crs:P" + std::to_string(i);
        body += "<" + name + ">" + std::to_string(i) + "</" + name + ">\n";
    }
    return body;
}

// `count` sibling properties in one schema.
inline std::string Wide(int count)
{
    return Packet(Properties(count));
}

// `descriptions` descriptions of `each` properties of one schema.
inline std::string Spread(int descriptions, int each)
{
    std::string body;
    for (int d = 1; d < descriptions; ++d)
        body += "</rdf:Description><rdf:Description rdf:about=\"\" "
                "xmlns:crs=\"http://ns.adobe.com/camera-raw-settings/1.0/\">" +
                Properties(each, d * each);
    return Packet(Properties(each) + body);
}

// One struct of `count` fields.
inline std::string WideStruct(int count)
{
    return Packet("<crs:S rdf:parseType=\"Resource\">" + Properties(count) + "</crs:S>\n");
}

inline std::string Bag(std::string const &name, int count)
{
    std::string body = "<" + name + "><rdf:Bag>";
    for (int i = 0; i < count; ++i)
        body += "<rdf:li>xmp.did:5a3c0e1b-7d2f-4c8a-9e61-" + std::to_string(i) + "</rdf:li>";
    return body + "</rdf:Bag></" + name + ">\n";
}

inline std::string Items(int count)
{
    return Packet(Bag("photoshop:DocumentAncestors", count));
}

inline std::string ManyArrays(int arrays, int each)
{
    std::string body;
    for (int a = 0; a < arrays; ++a)
        body += Bag("crs:A" + std::to_string(a), each);
    return Packet(body);
}

inline constexpr char kIptcExt[] = "\n    xmlns:Iptc4xmpExt=\"http://iptc.org/std/Iptc4xmpExt/2008-02-29/\"";

// `count` locations shown, each a struct of two fields.
inline std::string Locations(int count)
{
    std::string body = "<Iptc4xmpExt:LocationShown><rdf:Bag>";
    for (int i = 0; i < count; ++i)
        body += "<rdf:li rdf:parseType=\"Resource\"><Iptc4xmpExt:City>City " + std::to_string(i) +
                "</Iptc4xmpExt:City><Iptc4xmpExt:CountryName>Country</Iptc4xmpExt:CountryName></rdf:li>";
    return body + "</rdf:Bag></Iptc4xmpExt:LocationShown>\n";
}

inline std::string LongValue(std::size_t length)
{
    return Packet("<dc:format>" + std::string(length, 'a') + "</dc:format>\n");
}

inline std::string Namespaces(int count)
{
    std::string declarations;
    for (int i = 0; i < count; ++i)
        declarations += "\n    xmlns:n" + std::to_string(i) + "=\"http://example.com/ns" + std::to_string(i) + "/\"";
    return Packet("<dc:format>x</dc:format>\n", declarations);
}

inline std::string InvalidUtf8()
{
    return Packet("<dc:format>caf\xC3\x28</dc:format>\n");
}

inline std::string WithNul()
{
    return Packet(std::string("<dc:format>a\0b</dc:format>\n", 27));
}

inline std::string Doctype()
{
    std::string const packet = Packet("<dc:format>&big;</dc:format>\n");
    std::size_t const root = packet.find("<x:xmpmeta");
    return packet.substr(0, root) + "<!DOCTYPE x:xmpmeta [<!ENTITY big \"" + std::string(1000, 'a') + "\">]>\n" +
           packet.substr(root);
}

// What camera raw files and long-lived documents hold: `settings` develop
// settings with tone curves and masks, `history` history entries and
// `ancestors` document ancestors.
inline std::string RealSized(int settings, int history, int ancestors)
{
    std::string body = "<crs:Version>15.4</crs:Version>\n";
    for (int i = 0; i < settings; ++i)
        body += "<crs:Setting" + std::to_string(i) + ">" + std::to_string(i * 7 % 100) + "</crs:Setting" +
                std::to_string(i) + ">\n";
    for (char const *curve : {"ToneCurvePV2012", "ToneCurvePV2012Red", "ToneCurvePV2012Green", "ToneCurvePV2012Blue"}) {
        body += std::string("<crs:") + curve + "><rdf:Seq>";
        for (int p = 0; p < 16; ++p)
            body += "<rdf:li>" + std::to_string(p * 17) + ", " + std::to_string(p * 16) + "</rdf:li>";
        body += std::string("</rdf:Seq></crs:") + curve + ">\n";
    }
    body += "<crs:MaskGroupBasedCorrections><rdf:Seq>";
    for (int g = 0; g < 20; ++g) {
        body += "<rdf:li rdf:parseType=\"Resource\"><crs:What>Correction</crs:What><crs:LocalExposure2012>0.25"
                "</crs:LocalExposure2012><crs:CorrectionMasks><rdf:Seq>";
        for (int m = 0; m < 5; ++m)
            body += "<rdf:li rdf:parseType=\"Resource\"><crs:What>Mask/Paint</crs:What><crs:MaskValue>1</crs:MaskValue>"
                    "<crs:Masks><rdf:Seq><rdf:li rdf:parseType=\"Resource\"><crs:What>Mask/Ellipse</crs:What>"
                    "<crs:Top>0.1</crs:Top><crs:Left>0.2</crs:Left></rdf:li></rdf:Seq></crs:Masks></rdf:li>";
        body += "</rdf:Seq></crs:CorrectionMasks></rdf:li>";
    }
    body += "</rdf:Seq></crs:MaskGroupBasedCorrections>\n<xmpMM:History><rdf:Seq>";
    for (int i = 0; i < history; ++i)
        body += "<rdf:li stEvt:action=\"saved\" stEvt:instanceID=\"xmp.iid:0b7c2f1e-" + std::to_string(i) +
                "\" stEvt:when=\"2021-03-04T10:11:12+01:00\" stEvt:softwareAgent=\"Adobe Photoshop 22.2\" "
                "stEvt:changed=\"/\"/>";
    body += "</rdf:Seq></xmpMM:History>\n";
    return Packet(body + Bag("photoshop:DocumentAncestors", ancestors));
}

} // namespace hostile
