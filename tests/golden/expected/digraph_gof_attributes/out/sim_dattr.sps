GET DATA  /TYPE = TXT
/FILE = 'out/simulation_dattr.txt'
/DELCASE = LINE
/DELIMITERS = "	"
/ARRANGEMENT = DELIMITED
/FIRSTCASE = 2
/IMPORTCASE = ALL
/VARIABLES =
id F5.0
arc F8.0
recip F8.0
cloisterville_interaction F8.0
cloisterville_sender F8.0
cloisterville_receiver F8.0
cloisterville_sender_missing F8.0
cloisterville_receiver_missing F8.0
cloisterville_t2u11 F8.0
cloisterville_t1u11 F8.0
cloisterville_in2star F8.0
cloisterville_path2 F8.0
cloisterville_out2star F8.0
seniority_sender F8.4
seniority_receiver F8.4
seniority_sender_missing F8.4
seniority_receiver_missing F8.4
seniority_interaction_sum F8.4
seniority_interaction_diff F8.4
seniority_interaction_prod F8.4
seniority_sum_reciprocity F8.4
seniority_diff_reciprocity F8.4
seniority_prod_reciprocity F8.4
seniority_in2star F8.4
seniority_out2star F8.4
seniority_twomix F8.4
group_matching F8.0
group_mismatch F8.0
group_matching_reciprocity F8.0
group_mismatch_reciprocity F8.0
advice_arc F8.4
CACHE.
EXECUTE.

GRAPH
/Histogram=arc.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH arc
/MISSING=LISTWISE.
GRAPH
/Histogram=recip.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH recip
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_interaction.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_interaction
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_sender.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_sender
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_receiver.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_receiver
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_sender_missing.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_sender_missing
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_receiver_missing.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_receiver_missing
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_t2u11.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_t2u11
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_t1u11.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_t1u11
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_in2star.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_in2star
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_path2.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_path2
/MISSING=LISTWISE.
GRAPH
/Histogram=cloisterville_out2star.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH cloisterville_out2star
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_sender.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_sender
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_receiver.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_receiver
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_sender_missing.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_sender_missing
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_receiver_missing.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_receiver_missing
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_interaction_sum.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_interaction_sum
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_interaction_diff.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_interaction_diff
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_interaction_prod.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_interaction_prod
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_sum_reciprocity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_sum_reciprocity
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_diff_reciprocity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_diff_reciprocity
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_prod_reciprocity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_prod_reciprocity
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_in2star.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_in2star
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_out2star.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_out2star
/MISSING=LISTWISE.
GRAPH
/Histogram=seniority_twomix.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH seniority_twomix
/MISSING=LISTWISE.
GRAPH
/Histogram=group_matching.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH group_matching
/MISSING=LISTWISE.
GRAPH
/Histogram=group_mismatch.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH group_mismatch
/MISSING=LISTWISE.
GRAPH
/Histogram=group_matching_reciprocity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH group_matching_reciprocity
/MISSING=LISTWISE.
GRAPH
/Histogram=group_mismatch_reciprocity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH group_mismatch_reciprocity
/MISSING=LISTWISE.
GRAPH
/Histogram=advice_arc.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH advice_arc
/MISSING=LISTWISE.
