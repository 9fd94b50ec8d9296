GET DATA  /TYPE = TXT
/FILE = 'out/simulation_gattr.txt'
/DELCASE = LINE
/DELIMITERS = "	"
/ARRANGEMENT = DELIMITED
/FIRSTCASE = 2
/IMPORTCASE = ALL
/VARIABLES =
id F5.0
edge F8.0
at F8.4
rich_t3u F8.0
rich_t2u F8.0
rich_t1u F8.0
rich_o3u F8.0
rich_o2au F8.0
rich_o2bu F8.0
rich_o1au F8.0
rich_o1bu F8.0
rich_interaction F8.0
rich_activity F8.0
rich_ET1 F8.0
rich_ET2 F8.0
rich_ET0 F8.0
rich_ETNT F8.0
wealth_sum F8.4
priorates_sum F8.4
wealth_diff F8.4
priorates_diff F8.4
wealth_prod F8.4
priorates_prod F8.4
council_sameEC F8.0
council_diffEC F8.0
business_edge F8.4
business_s21 F8.4
business_s22 F8.4
business_t1 F8.4
business_t2 F8.4
business_t3 F8.4
CACHE.
EXECUTE.

GRAPH
/Histogram=edge.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH edge
/MISSING=LISTWISE.
GRAPH
/Histogram=at.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH at
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_t3u.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_t3u
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_t2u.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_t2u
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_t1u.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_t1u
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_o3u.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_o3u
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_o2au.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_o2au
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_o2bu.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_o2bu
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_o1au.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_o1au
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_o1bu.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_o1bu
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_interaction.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_interaction
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_activity.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_activity
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_ET1.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_ET1
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_ET2.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_ET2
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_ET0.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_ET0
/MISSING=LISTWISE.
GRAPH
/Histogram=rich_ETNT.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH rich_ETNT
/MISSING=LISTWISE.
GRAPH
/Histogram=wealth_sum.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH wealth_sum
/MISSING=LISTWISE.
GRAPH
/Histogram=priorates_sum.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH priorates_sum
/MISSING=LISTWISE.
GRAPH
/Histogram=wealth_diff.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH wealth_diff
/MISSING=LISTWISE.
GRAPH
/Histogram=priorates_diff.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH priorates_diff
/MISSING=LISTWISE.
GRAPH
/Histogram=wealth_prod.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH wealth_prod
/MISSING=LISTWISE.
GRAPH
/Histogram=priorates_prod.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH priorates_prod
/MISSING=LISTWISE.
GRAPH
/Histogram=council_sameEC.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH council_sameEC
/MISSING=LISTWISE.
GRAPH
/Histogram=council_diffEC.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH council_diffEC
/MISSING=LISTWISE.
GRAPH
/Histogram=business_edge.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_edge
/MISSING=LISTWISE.
GRAPH
/Histogram=business_s21.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_s21
/MISSING=LISTWISE.
GRAPH
/Histogram=business_s22.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_s22
/MISSING=LISTWISE.
GRAPH
/Histogram=business_t1.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_t1
/MISSING=LISTWISE.
GRAPH
/Histogram=business_t2.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_t2
/MISSING=LISTWISE.
GRAPH
/Histogram=business_t3.
GRAPH
/SCATTERPLOT(BIVAR)=id WITH business_t3
/MISSING=LISTWISE.
