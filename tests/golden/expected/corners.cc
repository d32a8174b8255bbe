// Made from corners.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/corners.bodies.h>

using namespace quorva::walk;

// Where a door stands. Always as long on the wire.   corners.x:9
int XdrPlace(Xdr* xdrs, void* object)
{
    return run<Place>(xdrs, object);
}

// Two of them are as long as ever. A sign of several bytes fills one column: äöüäöüäöüäöüäöüäöüäöü; so this line ends.
// corners.x:17
int XdrSpan(Xdr* xdrs, void* object)
{
    return run<Span>(xdrs, object);
}

// Numbers are told as they count, constants by name.   corners.x:23
template <class Pass>
At code(Pass& pass, At at, Numbers& obj)
{
    return parts(pass, at,
            text("hexadecimal", obj.hexadecimal, 16),
            text("octal", obj.octal, 8),
            bytes("constant", obj.constant, coder),
            list("list", obj.list, coder, quorva::coder::Natural),
            list("places", obj.places, 3, quorva::coder::Place));
}
QUORVA_BODY(Numbers)

int XdrNumbers(Xdr* xdrs, void* object)
{
    return run<Numbers>(xdrs, object);
}

// Words of the generated code, and a name so long that its lines must be broken somewhere else than those of all
// others.
// corners.x:32
template <class Pass>
At code(Pass& pass, At at, Passage& obj)
{
    return parts(pass, at,
            optional("field", obj.field, quorva::coder::Numbers),
            field("pass", obj.pass, quorva::coder::Span),
            list("aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat",
                 obj.aNameSoLongThatTheLineWhichItStandsInMustBeBrokenAndThatTheNextOneIsHardlyAnyShorterThanThat, 7,
                 quorva::coder::Place));
}
QUORVA_BODY(Passage)

int XdrPassage(Xdr* xdrs, void* object)
{
    return run<Passage>(xdrs, object);
}

// One name under several numbers, each with words of its own.   corners.x:39
template <class Pass>
At code(Pass& pass, At at, ::Element& obj)
{
    at = parts(pass, at, field("at", obj.at, quorva::coder::UINT));
    if (!at) return at;

    at = open(pass, at, "ElementUnion");
    switch (obj.at) {
    case 17:
        at = parts(pass, at, field("obj", obj.obj, quorva::coder::Place));
        break;
    case 18:
        at = parts(pass, at, field("obj", obj.obj, quorva::coder::Place));
        break;
    case 3:
        at = parts(pass, at, field("obj", obj.obj, quorva::coder::Place));
        break;
    case 4:
        break;
    default:
        at = open(pass, at, "default");
        at = close(pass, at, "default");
        break;
    }
    return close(pass, at, "ElementUnion");
}
QUORVA_BODY(Element)

int XdrElement(Xdr* xdrs, void* object)
{
    return run<::Element>(xdrs, object);
}

// corners.x:47
template <class Pass>
At code(Pass& pass, At at, ::Elements& obj)
{
    return parts(pass, at, list(untagged, obj, 65535, quorva::coder::Element));
}
QUORVA_BODY(Elements)

int XdrElements(Xdr* xdrs, void* object)
{
    return run<::Elements>(xdrs, object);
}

// corners.x:48
int XdrelementsOfALongNamedAlias(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<elementsOfALongNamedAlias>(xdrs, object);
    return obj && XdrElement(xdrs, obj);
}

// corners.x:49
int XdrRows(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Rows>(xdrs, object);
    return obj && vector(untagged, *obj, quorva::coder::Place).call(xdrs);
}

// Words that other XDR compilers keep for themselves.   corners.x:52
int XdrWords(Xdr* xdrs, void* object)
{
    return run<Words>(xdrs, object);
}
