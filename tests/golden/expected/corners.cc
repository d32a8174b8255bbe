// Made from corners.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/corners.bodies.h>

using namespace quorva::walk;

// Where a door stands. Always as long on the wire.   corners.x:9
QUORVA_IN_PLACE(Place)

int XdrPlace(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Place>(xdrs, object);
}

// Two of them are as long as ever. A sign of several bytes fills one column: äöüäöüäöüäöüäöüäöüäöü; so this line ends.
// corners.x:17
int XdrSpan(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Span>(xdrs, object);
}

// Numbers are told as they count, constants by name.   corners.x:23
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Numbers& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::text("hexadecimal", obj.hexadecimal, 16),
            quorva::walk::text("octal", obj.octal, 8),
            quorva::walk::bytes("constant", obj.constant, coder),
            quorva::walk::list("list", obj.list, coder, quorva::coder::Natural),
            quorva::walk::list("places", obj.places, 3, quorva::coder::Place));
}
QUORVA_BODY(Numbers)

int XdrNumbers(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Numbers>(xdrs, object);
}

// Words of the generated code, and a name so long that its lines must be broken somewhere else than those of all
// others.
// corners.x:32
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::At& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::optional("field", obj.field, quorva::coder::Numbers),
            quorva::walk::field("pass", obj.pass, quorva::coder::Span),
            quorva::walk::list("aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat",
                               obj.aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat,
                               7, quorva::coder::Place));
}
QUORVA_BODY(At)

int XdrAt(Xdr* xdrs, void* object)
{
    return quorva::walk::run<::At>(xdrs, object);
}

// One name under several numbers, each with words of its own.   corners.x:39
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::Element& obj)
{
    at = quorva::walk::parts(pass, at, quorva::walk::field("at", obj.at, quorva::coder::UINT));
    if (!at) return at;

    at = quorva::walk::open(pass, at, "ElementUnion");
    switch (obj.at) {
    case 17:
        at = armOf(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
        break;
    case 18:
        at = armOf(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
        break;
    case 3:
        at = armOf(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
        break;
    case 4:
        break;
    default:
        at = quorva::walk::open(pass, at, "default");
        at = quorva::walk::close(pass, at, "default");
        break;
    }
    return quorva::walk::close(pass, at, "ElementUnion");
}
QUORVA_BODY(Element)

int XdrElement(Xdr* xdrs, void* object)
{
    return quorva::walk::run<::Element>(xdrs, object);
}

// corners.x:47
QUORVA_IN_PLACE(Elements)

int XdrElements(Xdr* xdrs, void* object)
{
    return quorva::walk::run<::Elements>(xdrs, object);
}

// corners.x:48
int XdrelementsOfALongNamedAlias(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<elementsOfALongNamedAlias>(xdrs, object);
    return obj && XdrElement(xdrs, obj);
}

// corners.x:49
int XdrRows(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<Rows>(xdrs, object);
    return obj && quorva::walk::vector(quorva::walk::untagged, *obj, quorva::coder::Place).call(xdrs);
}

// Words that other XDR compilers keep for themselves.   corners.x:52
QUORVA_IN_PLACE(Words)

int XdrWords(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Words>(xdrs, object);
}

// Words of the generated code as names of types.   corners.x:61
int XdrCalls(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Calls>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:62
int XdrDecimal(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Decimal>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:63
int XdrDecoding(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Decoding>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:64
int XdrEncoding(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Encoding>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:65
int XdrField(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Field>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:66
int XdrList(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::List>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:67
int XdrName(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Name>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:68
int XdrOptional(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Optional>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:69
int XdrReleasing(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Releasing>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:70
int XdrText(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Text>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:71
int XdrTracing(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Tracing>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:72
int Xdrbytes(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::bytes>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:73
int Xdrclose(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::close>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:74
int Xdrenumeration(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::enumeration>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:75
int Xdrfield(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::field>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:76
int Xdrlist(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::list>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:77
int XdrobjectAt(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::objectAt>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:78
int Xdropen(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::open>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:79
int Xdroptional(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::optional>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:80
int Xdrparts(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::parts>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:81
int Xdrrefuse(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::refuse>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:82
int Xdrrun(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::run>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:83
int Xdrtext(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::text>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:84
int Xdruntagged(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::untagged>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:85
int Xdrvector(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::vector>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:86
int XdrPass(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Pass>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:87
int Xdrobj(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::obj>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:88
int Xdrobject(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::object>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:89
int Xdrpass(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::pass>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:90
int Xdrxdrs(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::xdrs>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}
