// Searches descriptions and documentation.

#include "find.h"

#include "documentation.h"
#include "explain/layout.h"
#include "support/text.h"
#include "table.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace quorva::inspect {

namespace {

enum Closeness { equal, beginning, containing, different };

// The number that the whole word spells, in decimal or in hexadecimal with 0x.
std::optional<std::int64_t> numberIn(std::string_view word)
{
    const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
    const std::string_view digits = isHexadecimal ? word.substr(2) : word;
    if (isHexadecimal && digits.starts_with('-')) return std::nullopt;
    std::int64_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

bool isWordCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

class Search {
public:
    Search(std::string_view word, std::optional<HitKind> kind)
        : wanted(support::lowerCase(word)),
          isPattern(wanted.find_first_of("*?") != std::string::npos),
          number(numberIn(wanted)),
          only(kind)
    {
    }

    void searchNames(const Type& type)
    {
        add(closenessOf(type.name), {.kind = HitKind::type, .type = &type, .detail = kindName(type)});
        for (const Enumerator& e : enumeratorsOf(type))
            add(std::min(closenessOf(e.name), closenessOf(e.value)),
                {.kind = HitKind::enumerator, .type = &type, .name = e.name, .value = e.value});
        if (type.kind == TypeKind::discriminatedUnion) return searchUnion(type);
        if (type.kind == TypeKind::typeDefinition) return;
        for (const Member& member : type.members) addMember(type, member);
    }

    void searchProcedure(const KnownProcedure& known)
    {
        const RemoteProcedure& procedure = *known.procedure;
        const auto typeName = [](const Type* type) { return type ? type->name : "void"; };
        add(std::min({closenessOf(procedure.name), closenessOf(procedure.number), closenessOf(known.program->name),
                      closenessOf(known.program->number)}),
            {.kind = HitKind::procedure,
             .name = procedure.name,
             .value = procedure.number,
             .detail = std::string(typeName(procedure.result)) + ' ' + procedure.name + '(' +
                       typeName(procedure.argument) + ')',
             .procedure = known});
    }

    void searchText(const Type& type)
    {
        const Documentation& documentation = documentationOf(type);
        addText(type, "", documentation.text);
        for (const Member& member : type.members) addText(type, member.name, documentationOf(type, member).text);
        for (const Enumerator& e : documentation.enumerators) addText(type, e.name, e.text);
    }

    bool isEmpty() const { return ranked.empty(); }

    std::vector<Hit> take()
    {
        std::ranges::stable_sort(ranked, {},
                                 [](const Ranked& each) { return std::pair(each.closeness, each.hit.kind); });
        std::vector<Hit> hits;
        for (Ranked& each : ranked) hits.push_back(std::move(each.hit));
        return hits;
    }

private:
    struct Ranked {
        Closeness closeness;
        Hit hit;
    };

    Closeness closenessOf(std::string_view name) const
    {
        if (isPattern) return matches(wanted, name) ? equal : different;
        if (name.size() < wanted.size()) return different;
        const std::size_t at = support::lowerCase(name).find(wanted);
        if (at == std::string::npos) return different;
        return name.size() == wanted.size() ? equal : at == 0 ? beginning : containing;
    }

    Closeness closenessOf(std::int64_t value) const
    {
        return number && (*number == value || *number == static_cast<std::uint32_t>(value)) ? equal : different;
    }

    void add(Closeness closeness, Hit hit)
    {
        if (closeness != different && (!only || *only == hit.kind)) ranked.push_back({closeness, std::move(hit)});
    }

    void addMember(const Type& type, const Member& member)
    {
        const Closeness closeness = closenessOf(member.name);
        if (closeness != different)
            add(closeness, {.kind = HitKind::member,
                            .type = &type,
                            .name = member.name,
                            .detail = declaration(member.use, member.name)});
    }

    void searchUnion(const Type& type)
    {
        addMember(type, type.members.front());
        const Type& discriminant = discriminantOf(type);
        for (const Case& each : type.cases) {
            const Member& arm = type.members[each.member];
            const std::int64_t value = fromUnit(discriminant, each.value);
            const Enumerator* named = enumeratorOf(discriminant, value);
            const Closeness closeness =
                std::min({closenessOf(arm.name), closenessOf(value), named ? closenessOf(named->name) : different});
            if (closeness != different)
                add(closeness, {.kind = HitKind::arm,
                                .type = &type,
                                .name = arm.name,
                                .value = value,
                                .enumerator = named ? named->name : "",
                                .detail = declaration(arm.use, arm.name)});
        }
    }

    // Finds the word in a text: best as a whole word, else at the beginning of one, else anywhere.
    void addText(const Type& type, std::string_view name, std::string_view text)
    {
        if (wanted.empty() || text.size() < wanted.size()) return;
        for (const std::string_view line : support::linesOf(text)) {
            const std::string lower = support::lowerCase(line);
            Closeness best = different;
            for (std::size_t at = lower.find(wanted); at != std::string::npos; at = lower.find(wanted, at + 1)) {
                const bool begins = at == 0 || !isWordCharacter(lower[at - 1]);
                const std::size_t end = at + wanted.size();
                const bool ends = end == lower.size() || !isWordCharacter(lower[end]);
                best = std::min(best, begins && ends ? equal : begins ? beginning : containing);
            }
            add(best, {.kind = HitKind::text, .type = &type, .name = name, .detail = std::string(line)});
        }
    }

    const std::string wanted;
    const bool isPattern;
    const std::optional<std::int64_t> number;
    const std::optional<HitKind> only;
    std::vector<Ranked> ranked;
};

const char* nameOf(HitKind kind)
{
    return hitKindNames[static_cast<std::size_t>(kind)];
}

std::string placeOf(const Hit& hit)
{
    if (!hit.procedure) return inspect::placeOf(*hit.type);
    return std::string(hit.procedure->module->file) + ':' + std::to_string(hit.procedure->program->line);
}

// "JobAVP", "JobAVP.value", "JobUnion 700 jobName", "AccessUnion AKowner (1) owner", "DoorState DSopen = 0"
std::string labelOf(const Hit& hit)
{
    if (hit.procedure) return hit.procedure->name() + " = " + std::to_string(*hit.value);
    std::string label = hit.type->name;
    const std::string value = hit.value ? std::to_string(*hit.value) : "";
    switch (hit.kind) {
    case HitKind::type: return label;
    case HitKind::enumerator: return label.append(" ").append(hit.name) + " = " + value;
    case HitKind::arm:
        label += hit.enumerator.empty() ? ' ' + value : ' ' + std::string(hit.enumerator) + " (" + value + ')';
        return hit.name.empty() ? label : label.append(" ").append(hit.name);
    case HitKind::member:
    case HitKind::procedure:
    case HitKind::text: break;
    }
    return hit.name.empty() ? label : label.append(".").append(hit.name);
}

}  // namespace

std::vector<Hit> findHits(std::string_view word, std::span<const Type* const> types, std::optional<HitKind> only)
{
    if (word.empty()) return {};
    Search search(word, only);
    if (only != HitKind::text) {
        for (const Type* type : types) search.searchNames(*type);
        for (const KnownProcedure& each : knownProcedures()) search.searchProcedure(each);
    }
    if (search.isEmpty() && (!only || only == HitKind::text))
        for (const Type* type : types) search.searchText(*type);
    return search.take();
}

std::string hitsText(std::span<const Hit> hits, std::size_t most)
{
    Table table("");
    for (const Hit& hit : hits.first(std::min(most, hits.size())))
        table.add({nameOf(hit.kind), labelOf(hit), placeOf(hit), hit.detail});
    std::string text = table.text();
    if (hits.size() > most) text += "and " + std::to_string(hits.size() - most) + " more (--all)\n";
    return text;
}

Json hitsJson(std::span<const Hit> hits)
{
    Json json = Json::array();
    for (const Hit& hit : hits) {
        Json entry = {{"kind", nameOf(hit.kind)}};
        if (hit.type) entry["type"] = hit.type->name;
        if (!hit.name.empty()) entry["name"] = hit.name;
        if (hit.value) entry["value"] = *hit.value;
        if (!hit.enumerator.empty()) entry["enumerator"] = hit.enumerator;
        if (hit.procedure) {
            entry["program"] = hit.procedure->program->name;
            entry["version"] = hit.procedure->version->name;
            entry["file"] = hit.procedure->module->file;
            entry["line"] = hit.procedure->program->line;
        } else if (const Module* const module = moduleOf(*hit.type)) {
            entry["file"] = module->file;
            entry["line"] = documentationOf(*hit.type).line;
        }
        if (!hit.detail.empty()) entry["detail"] = hit.detail;
        json.push_back(std::move(entry));
    }
    return json;
}

std::string suggestedName(std::string_view word, std::span<const Type* const> types)
{
    std::set<std::string_view> names;
    for (const Type* type : types) {
        names.insert(type->name);
        for (const Member& member : type->members)
            if (*member.name) names.insert(member.name);
        for (const Enumerator& e : enumeratorsOf(*type)) names.insert(e.name);
    }
    const std::vector<std::string_view> candidates(names.begin(), names.end());
    return didYouMean(word, candidates);
}

}  // namespace quorva::inspect
