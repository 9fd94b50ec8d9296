#pragma once
// The files a simulation or goodness of fit writes per sample, as the samples are drawn: the
// descriptive rows the run's output flags turn on (a header line when the file opens, one row
// per sample) and, with the Pajek flag, each sample's matrix file and its Pajek block. Written
// as the samples come, so that no run holds more than the network it is sampling.

#include <memory>
#include <string>

#include "base/text_file.h"
#include "report/output_names.h"
#include "sampler/observer.h"
#include "simulation/measures.h"

namespace vexa {

template <class Store>
struct SampleFiles {
    // Opens the files the outputs turn on, each with its header for networks the size of
    // `network`.
    SampleFiles(const Store& network, const SampleOutputs& chosen, const OutputNames& file_names,
                const std::string& name);

    // The rows of one sample. `measured` is the scratch whose geodesic pass has just measured
    // this network, or null.
    void write(const Store& network, double number, ScratchOf<Store>* measured);
    void close();

    SampleOutputs outputs;
    OutputNames names;
    std::string network_name;
    ScratchOf<Store> scratch;
    // A digraph writes only the first three.
    std::unique_ptr<OutFile> degree, geodesic, cluster, quartiles, triangle, twopath, et0nt;
};

// An observer that writes every sample drawn into `files`, which must outlive it.
template <class Store>
Observer sample_file_observer(SampleFiles<Store>& files) {
    Observer observer;
    observer.sample_drawn = [&files](const SampleDrawn& sample) {
        ScratchOf<Store>* measured = nullptr;
        if (auto* scratch = std::get_if<ScratchOf<Store>*>(&sample.measured)) measured = *scratch;
        files.write(*std::get<const Store*>(sample.network), sample.number, measured);
    };
    return observer;
}

}  // namespace vexa
