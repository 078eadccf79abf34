#pragma once

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

template <class Agent>
ts::RecordSchema TsAgentRecordSchema(std::u16string name) {
    ts::RecordSchema schema;
    schema.name = std::move(name);
    schema.create = &TsMakeAgentRecord<Agent>;
    return schema;
}
