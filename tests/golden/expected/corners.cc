// Made from corners.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/corners.bodies.h>

using namespace quorva::walk;

// Where a door stands. Always as long on the wire.   corners.x:9
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
        at = quorva::walk::parts(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
        break;
    case 18:
        at = quorva::walk::parts(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
        break;
    case 3:
        at = quorva::walk::parts(pass, at, quorva::walk::field("obj", obj.obj, quorva::coder::Place));
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

// Types that lead to each other.   corners.x:48
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Knot& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::optional("tie", obj.tie, quorva::coder::Tie),
            quorva::walk::optional("loop", obj.loop, quorva::coder::Loop));
}
QUORVA_BODY(Knot)

int XdrKnot(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Knot>(xdrs, object);
}

// corners.x:49
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Loop& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::optional("knot", obj.knot, quorva::coder::Knot));
}
QUORVA_BODY(Loop)

int XdrLoop(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Loop>(xdrs, object);
}

// corners.x:50
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Tie& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::optional("knot", obj.knot, quorva::coder::Knot));
}
QUORVA_BODY(Tie)

int XdrTie(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Tie>(xdrs, object);
}

// What it holds stands before it, though that leads back here.   corners.x:53
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Outer& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("inner", obj.inner, quorva::coder::Inner),
            quorva::walk::optional("next", obj.next, quorva::coder::Outer));
}
QUORVA_BODY(Outer)

int XdrOuter(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Outer>(xdrs, object);
}

// corners.x:54
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Inner& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("others", obj.others, quorva::coder::OuterSeq));
}
QUORVA_BODY(Inner)

int XdrInner(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Inner>(xdrs, object);
}

// corners.x:55
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, OuterSeq& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535, quorva::coder::Outer));
}
QUORVA_BODY(OuterSeq)

int XdrOuterSeq(Xdr* xdrs, void* object)
{
    return quorva::walk::run<OuterSeq>(xdrs, object);
}

// A typedef stands before what names it, and what leads nowhere before what leads to it.   corners.x:58
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Self& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::optional("my", obj.my, quorva::coder::My),
            quorva::walk::optional("late", obj.late, quorva::coder::Late));
}
QUORVA_BODY(Self)

int XdrSelf(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Self>(xdrs, object);
}

// corners.x:59
int XdrMy(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<My>(xdrs, object);
    return obj && XdrMe(xdrs, obj);
}

// corners.x:60
int XdrMe(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<Me>(xdrs, object);
    return obj && XdrSelf(xdrs, obj);
}

// corners.x:61
int XdrLate(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Late>(xdrs, object);
}

// corners.x:62
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Ladders& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535, quorva::coder::Rungs));
}
QUORVA_BODY(Ladders)

int XdrLadders(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Ladders>(xdrs, object);
}

// corners.x:63
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Rungs& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535,
                                                            quorva::coder::Ladders));
}
QUORVA_BODY(Rungs)

int XdrRungs(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Rungs>(xdrs, object);
}

// Owns nothing, and is as long as its arm.   corners.x:66
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Choice& obj)
{
    at = quorva::walk::parts(pass, at, quorva::walk::field("colour", obj.colour, quorva::coder::LampColour));
    if (!at) return at;

    at = quorva::walk::open(pass, at, "ChoiceUnion");
    switch (obj.colour) {
    case LampColour::LCoff:
        break;
    case LampColour::LCred:
        at = quorva::walk::parts(pass, at, quorva::walk::field("place", obj.place, quorva::coder::Place));
        break;
    default:
        return quorva::walk::refuse(pass, at, obj.colour);
    }
    return quorva::walk::close(pass, at, "ChoiceUnion");
}
QUORVA_BODY(Choice)

int XdrChoice(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Choice>(xdrs, object);
}

// corners.x:67
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Chosen& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("first", obj.first, quorva::coder::Natural),
            quorva::walk::field("choice", obj.choice, quorva::coder::Choice));
}
QUORVA_BODY(Chosen)

int XdrChosen(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Chosen>(xdrs, object);
}

// corners.x:68
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Framed& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("chosen", obj.chosen, quorva::coder::Chosen),
            quorva::walk::field("last", obj.last, quorva::coder::Natural));
}
QUORVA_BODY(Framed)

int XdrFramed(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Framed>(xdrs, object);
}

// Words of a list's own members.   corners.x:71
int Xdrcount(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<count>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:72
int Xdrelements(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<elements>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:73
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Counts& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535, quorva::coder::count));
}
QUORVA_BODY(Counts)

int XdrCounts(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Counts>(xdrs, object);
}

// corners.x:74
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Parts& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 4, quorva::coder::elements));
}
QUORVA_BODY(Parts)

int XdrParts(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Parts>(xdrs, object);
}

// corners.x:76
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::Elements& obj)
{
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535,
                                                            quorva::coder::Element));
}
QUORVA_BODY(Elements)

int XdrElements(Xdr* xdrs, void* object)
{
    return quorva::walk::run<::Elements>(xdrs, object);
}

// corners.x:77
int XdrelementsOfALongNamedAlias(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<elementsOfALongNamedAlias>(xdrs, object);
    return obj && XdrElement(xdrs, obj);
}

// corners.x:78
int XdrRows(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<Rows>(xdrs, object);
    return obj && vector(quorva::walk::untagged, *obj, quorva::coder::Place).call(xdrs);
}

// Words that other XDR compilers keep for themselves.   corners.x:81
int XdrWords(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Words>(xdrs, object);
}

// Words of the generated code as names of types.   corners.x:90
int XdrCalls(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Calls>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:91
int XdrDecimal(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Decimal>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:92
int XdrDecoding(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Decoding>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:93
int XdrEncoding(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Encoding>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:94
int XdrField(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Field>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:95
int XdrList(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::List>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:96
int XdrName(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Name>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:97
int XdrOptional(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Optional>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:98
int XdrReleasing(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Releasing>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:99
int XdrText(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Text>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:100
int XdrTracing(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Tracing>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:101
int Xdrbytes(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::bytes>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:102
int Xdrclose(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::close>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:103
int Xdrenumeration(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::enumeration>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:104
int Xdrfield(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::field>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:105
int Xdrlist(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::list>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:106
int XdrobjectAt(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::objectAt>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:107
int Xdropen(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::open>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:108
int Xdroptional(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::optional>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:109
int Xdrparts(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::parts>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:110
int Xdrrefuse(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::refuse>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:111
int Xdrrun(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::run>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:112
int Xdrtext(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::text>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:113
int Xdruntagged(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::untagged>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:114
int XdrPass(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::Pass>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:115
int Xdrobj(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::obj>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:116
int Xdrobject(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::object>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:117
int Xdrpass(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::pass>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// corners.x:118
int Xdrxdrs(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<::xdrs>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// Comments of all sorts.   corners.x:127
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Remarks& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("slashes", obj.slashes, quorva::coder::Natural),
            quorva::walk::field("exclamation", obj.exclamation, quorva::coder::Natural),
            quorva::walk::field("below", obj.below, quorva::coder::Natural),
            quorva::walk::field("apart", obj.apart, quorva::coder::Natural),
            quorva::walk::field("behind", obj.behind, quorva::coder::Natural),
            quorva::walk::field("strokes", obj.strokes, quorva::coder::Natural),
            quorva::walk::field("marks", obj.marks, quorva::coder::Natural),
            quorva::walk::field("tab", obj.tab, quorva::coder::Natural),
            quorva::walk::field("broken", obj.broken, quorva::coder::Natural),
            quorva::walk::field("whole", obj.whole, quorva::coder::Natural),
            quorva::walk::field("words", obj.words, quorva::coder::Natural),
            quorva::walk::list("aNameThatIsTooLongForAnyWordsBehindItButLeavesRoomForTheRemarkOnTheMostThatThereMayBeOfThem",
                               obj.aNameThatIsTooLongForAnyWordsBehindItButLeavesRoomForTheRemarkOnTheMostThatThereMayBeOfThem,
                               7, quorva::coder::Place));
}
QUORVA_BODY(Remarks)

int XdrRemarks(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Remarks>(xdrs, object);
}

// Comments within a union.   corners.x:149
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Remarked& obj)
{
    at = quorva::walk::parts(pass, at, quorva::walk::field("colour", obj.colour, quorva::coder::LampColour));
    if (!at) return at;

    at = quorva::walk::open(pass, at, "RemarkedUnion");
    switch (obj.colour) {
    case LampColour::LCoff:
        break;
    case LampColour::LCgreen:
        at = quorva::walk::parts(pass, at, quorva::walk::field("steps", obj.steps, quorva::coder::Natural));
        break;
    case LampColour::LCred:
        break;
    default:
        return quorva::walk::refuse(pass, at, obj.colour);
    }
    return quorva::walk::close(pass, at, "RemarkedUnion");
}
QUORVA_BODY(Remarked)

int XdrRemarked(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Remarked>(xdrs, object);
}

// What is longer than a message is no run of units.   corners.x:162
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Vast& obj)
{
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map),
            quorva::walk::field("last", obj.last, quorva::coder::Natural));
}
QUORVA_BODY(Vast)

int XdrVast(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Vast>(xdrs, object);
}

// corners.x:166
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Vaster& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("vast", obj.vast, quorva::coder::Vast));
}
QUORVA_BODY(Vaster)

int XdrVaster(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Vaster>(xdrs, object);
}

// corners.x:167
int XdrLargest(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Largest>(xdrs, object);
}

// A remark that must be broken.   corners.x:170
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Silent& obj)
{
    at = quorva::walk::parts(pass, at, quorva::walk::field("number", obj.number, quorva::coder::LongNatural));
    if (!at) return at;

    at = quorva::walk::open(pass, at, "SilentUnion");
    switch (obj.number) {
    case 8:
        at = quorva::walk::parts(pass, at, quorva::walk::field("loud", obj.loud, quorva::coder::Natural));
        break;
    case 9:
        break;
    default:
        return quorva::walk::refuse(pass, at, obj.number);
    }
    return quorva::walk::close(pass, at, "SilentUnion");
}
QUORVA_BODY(Silent)

int XdrSilent(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Silent>(xdrs, object);
}

// Lines as wide as can be, and one column wider.   corners.x:176
int XdrColumn(Xdr* xdrs, void* object)
{
    auto* obj = quorva::walk::objectAt<Column>(xdrs, object);
    return obj && XdrNatural(xdrs, obj);
}

// 102 columns, to the very last column of the line that it just about fills and not one sign more than z
// corners.x:184
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Widths& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("a", obj.a, quorva::coder::Natural),
            quorva::walk::field("b", obj.b, quorva::coder::Natural),
            quorva::walk::field("c", obj.c, quorva::coder::Natural),
            quorva::walk::field("ccccccccccccccccccccccccccccccccccccccccccccccccccc",
                                obj.ccccccccccccccccccccccccccccccccccccccccccccccccccc, quorva::coder::Natural),
            quorva::walk::field("d", obj.d, quorva::coder::Natural),
            quorva::walk::field("e", obj.e, quorva::coder::Natural),
            quorva::walk::field("eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
                                obj.eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee, quorva::coder::Natural),
            quorva::walk::field("f", obj.f, quorva::coder::Natural),
            quorva::walk::field("g", obj.g, quorva::coder::Natural),
            quorva::walk::field("h", obj.h, quorva::coder::Natural),
            quorva::walk::field("i", obj.i, quorva::coder::Natural),
            quorva::walk::field("j", obj.j, quorva::coder::Natural),
            quorva::walk::optional("kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk",
                                   obj.kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk,
                                   quorva::coder::Natural));
}
QUORVA_BODY(Widths)

int XdrWidths(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Widths>(xdrs, object);
}

// Not in the order of their values.   corners.x:212
const char* OrderString(int value)
{
    switch (value) {
    case 3: return "ORthird";
    case 1: return "ORfirst";
    case 2: return "ORsecond";
    default: return "Error_in_Function";
    }
}

int XdrOrder(Xdr* xdrs, void* object)
{
    return quorva::walk::enumeration<Order>(xdrs, object, OrderString);
}

// 105 in a literal, to the very last column of the line that it just about fills and not one sign more th z
// corners.x:215
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Fits& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("widths", obj.widths, quorva::coder::Widths));
}
QUORVA_BODY(Fits)

int XdrFits(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Fits>(xdrs, object);
}

// 106 in two, to the very last column of the line that it just about fills and not one sign more than that z
// corners.x:218
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Spills& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("widths", obj.widths, quorva::coder::Widths));
}
QUORVA_BODY(Spills)

int XdrSpills(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Spills>(xdrs, object);
}

// 117 with its place, to the very last column of the line that it just about fills and not one sign m z   corners.x:221
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Heads& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("fits", obj.fits, quorva::coder::Fits));
}
QUORVA_BODY(Heads)

int XdrHeads(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Heads>(xdrs, object);
}

// 118 with its place, to the very last column of the line that it just about fills and not one sign mo z
// corners.x:224
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Tails& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("fits", obj.fits, quorva::coder::Fits));
}
QUORVA_BODY(Tails)

int XdrTails(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Tails>(xdrs, object);
}

// corners.x:226
int XdrFilllllllll(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Filllllllll>(xdrs, object);
}

// corners.x:227
int XdrWiderrrrrrr(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Widerrrrrrr>(xdrs, object);
}

// corners.x:228
int XdrLonggggggggggggggggggggg(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Longgggggggggggggggggggg>(xdrs, object);
}

// corners.x:230
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Lines& obj)
{
    return quorva::walk::parts(pass, at,
            quorva::walk::field("f1mmmmmmmmmmmmmmmmmmmmmmmmm", obj.f1mmmmmmmmmmmmmmmmmmmmmmmmm, quorva::coder::Natural),
            quorva::walk::optional("o2mmmmmmmmmmmmmmmmmmmmmmmm", obj.o2mmmmmmmmmmmmmmmmmmmmmmmm,
                                   quorva::coder::Natural),
            quorva::walk::text("s1mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm", obj.s1mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm, 1),
            quorva::walk::text("s2xmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm", obj.s2xmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm, 10));
}
QUORVA_BODY(Lines)

int XdrLines(Xdr* xdrs, void* object)
{
    return quorva::walk::run<Lines>(xdrs, object);
}
