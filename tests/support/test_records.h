#pragma once

#include "agents/agentgameobject.h"
#include "agents/agentrecord.h"

namespace ts::test {

// Small records in the shape of the real schemas (a resource with a list of lines, lines with a
// list of transitions), for tests of the short JSON form and the module builder that must not
// depend on the real schemas.
#define TS_TEST_TRANSITION_FIELDS(F)                           \
    F(IsLink, Bool, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(LineIndex, Int, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentTestTransition : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentTestTransition, CAgentBase, "agenttest", TS_TEST_TRANSITION_FIELDS)
    TS_AGENT_DEFAULTS()
};

#define TS_TEST_LINE_FIELDS(F)                                          \
    F(StringID, Int, 0, u"", u"", u"", u"", u"", -1)                    \
    F(Text, String, 2, u"Text", u"", u"", u"", u"", u"")                \
    F(Speaker, String, 2, u"Speaker", u"", u"", u"", u"TagName", u"")   \
    F(Delay, Float, 2, u"", u"", u"", u"", u"", 0.0)                    \
    F(SentOn, DateTime, 2, u"", u"", u"", u"", u"", 0.0)                \
    F(Ambient, Bool, 2, u"", u"", u"", u"", u"", false)                 \
    F(TransitionList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(ExtraList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentTestLine : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentTestLine, CAgentBase, "agenttest", TS_TEST_LINE_FIELDS)
    TS_AGENT_DEFAULTS()
};

// A family of two kinds told apart by Kind, as cutscene actors are by Type.
#define TS_TEST_MARK_FIELDS(F)                   \
    F(Kind, Int, 0, u"", u"", u"", u"", u"", -1) \
    F(Label, String, 2, u"", u"", u"", u"", u"", u"")

class CAgentTestMark : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentTestMark, CAgentBase, "agenttest", TS_TEST_MARK_FIELDS)
    TS_AGENT_DEFAULTS()
};

#define TS_TEST_FLAG_FIELDS(F) F(Colour, Colour, 2, u"", u"", u"", u"", u"", (TsColour{1, 0, 0, 1}))
class CAgentTestFlag : public CAgentTestMark {
public:
    TS_AGENT_FIELDS(CAgentTestFlag, CAgentTestMark, "agenttest", TS_TEST_FLAG_FIELDS)
    bool SetDefaults() override {
        return Base::SetDefaults() && SetKind(1) && WriteDefaults(Fields());
    }
};

#define TS_TEST_PIN_FIELDS(F) F(Height, Float, 2, u"", u"", u"", u"", u"", 2.0)
class CAgentTestPin : public CAgentTestMark {
public:
    TS_AGENT_FIELDS(CAgentTestPin, CAgentTestMark, "agenttest", TS_TEST_PIN_FIELDS)
    bool SetDefaults() override {
        return Base::SetDefaults() && SetKind(2) && WriteDefaults(Fields());
    }
};

#define TS_TEST_TALK_FIELDS(F)                                               \
    F(DefaultSpeaker, String, 0, u"", u"", u"", u"", u"", u"OWNER")          \
    F(Position, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{0, 0, 0})) \
    F(LineList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)            \
    F(MarkList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentTestTalk : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentTestTalk, CAgentGameObject, "agenttest", TS_TEST_TALK_FIELDS)
    TS_AGENT_DEFAULTS()
};

// Schemas of the records: "talk" resources hold "LineList" lines whose "TransitionList" holds
// transitions, and "MarkList" marks of two kinds; "ExtraList" has no element schema.
struct TestSchemas {
    RecordSchema transition = TsAgentRecordSchema<CAgentTestTransition>(u"test transition");
    RecordSchema line = TsAgentRecordSchema<CAgentTestLine>(u"test line");
    RecordSchema mark = TsAgentRecordSchema<CAgentTestMark>(u"test mark");
    RecordSchema flag = TsAgentRecordSchema<CAgentTestFlag>(u"flag");
    RecordSchema pin = TsAgentRecordSchema<CAgentTestPin>(u"pin");
    RecordSchema talk = TsAgentRecordSchema<CAgentTestTalk>(u"test talk");

    TestSchemas() {
        line.elements[u"TransitionList"] = &transition;
        mark.kindField = u"Kind";
        mark.kinds = {{1, &flag}, {2, &pin}};
        talk.elements[u"LineList"] = &line;
        talk.elements[u"MarkList"] = &mark;
        talk.nameField = u"ResRefName";
    }
    TestSchemas(const TestSchemas&) = delete;

    ResourceSchemaLookup Lookup() const {
        return [this](std::u16string_view type) -> const RecordSchema* {
            return type == u"talk" ? &talk : nullptr;
        };
    }
};

}  // namespace ts::test
