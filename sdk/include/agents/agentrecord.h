#pragma once

#include <type_traits>
#include <vector>

#include "agents/agentbase.h"
#include "ts/recordschema.h"

// A new record of an agent's kind: a fresh "Agent" node with every field declared and defaulted,
// exactly as the agent makes one. Record schemas (ts/recordschema.h) use it to build records
// from the short JSON form.
template <class Agent>
bool TsMakeAgentRecord(CTsComPtr<ITsProperty>& record) {
    Agent agent;
    if (!agent.BuildProperties() || !agent.SetDefaults()) return false;
    record = CTsComPtr<ITsProperty>(agent.GetNode());
    return true;
}

// The value fields an agent and its bases declare without a default.
template <class Agent>
void TsCollectFieldsWithoutDefault(std::vector<std::u16string>& names) {
    if constexpr (!std::is_same_v<Agent, CAgentBase>) {
        TsCollectFieldsWithoutDefault<typename Agent::Base>(names);
        for (const TsFieldDecl& f : Agent::Fields())
            if (f.name && *f.name && f.type != kTsTypeList &&
                f.defaultValue.kind == TsFieldDefault::Kind::None)
                names.emplace_back(f.name);
    }
}

template <class Agent>
ts::RecordSchema TsAgentRecordSchema(std::u16string name) {
    ts::RecordSchema schema;
    schema.name = std::move(name);
    schema.create = &TsMakeAgentRecord<Agent>;
    TsCollectFieldsWithoutDefault<Agent>(schema.alwaysWritten);
    return schema;
}
