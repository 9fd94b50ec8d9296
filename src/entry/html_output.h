#pragma once
// The HTML report of a command-line run: what it needs beyond the task's records (the
// distributions of the observed network and of every sampled one, taken as the samples are
// drawn) and the writing of the page once the task has ended.

#include <string>
#include <vector>

#include "describe/network_profile.h"
#include "entry/embedding.h"
#include "entry/run_context.h"

namespace vexa {

struct HtmlCollection {
    TaskRecords records;
    NetworkProfile observed;
    std::vector<NetworkProfile> samples;
};

// Takes the profile of every sample a task measured (a goodness of fit's) into `collection`,
// which must outlive it.
Observer html_collector(HtmlCollection& collection);

// Writes the run's page to its output name and says where on the console.
void write_html_output(const RunContext& context, const HtmlCollection& collection);

}  // namespace vexa
