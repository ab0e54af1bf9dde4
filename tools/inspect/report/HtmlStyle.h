#pragma once

namespace vyr::inspect {

/// The style of the page.
inline constexpr char k_htmlStyle[] = R"(
:root{color-scheme:light dark;--bg:#fff;--soft:#f4f6f8;--line:#d5dbe1;--text:#1b2127;--muted:#55606b;--link:#0a58a8;
--bad:#a3230f;--badbg:#fdecea;--warn:#7a4b00;--warnbg:#fdf3dc;--good:#1a6b35;--goodbg:#e8f5ec;--box:#e6eff9;--shade:#0004;
--c0:#2563a8;--c1:#b35900;--c2:#2b7a4b;--c3:#7a4bb8;--c4:#0d7684;--c5:#b0356b;--head:9.5rem;--minute:.26rem}
@media(prefers-color-scheme:dark){:root{--bg:#14181d;--soft:#1d2329;--line:#343d46;--text:#e3e8ed;--muted:#a0acb7;
--link:#82b8f5;--bad:#ff9d8a;--badbg:#3a1c18;--warn:#f0c060;--warnbg:#352a12;--good:#7fd39b;--goodbg:#17301f;--box:#1f3249;--shade:#a0acb780;
--c0:#6aa9f0;--c1:#e79a45;--c2:#66c48a;--c3:#b79af0;--c4:#4cbccb;--c5:#ef8ab6}}
*{box-sizing:border-box}
html{scroll-padding-top:1rem;-webkit-text-size-adjust:100%}
body{margin:0;background:var(--bg);color:var(--text);font:.9375rem/1.5 system-ui,sans-serif;overflow-wrap:anywhere}
header,nav,main,footer{max-width:80rem;margin:0 auto;padding:0 1.25rem}
header{padding-top:1.5rem}
h1{font-size:1.5rem;line-height:1.25;margin:0 0 .25rem}
h2{font-size:1.2rem;margin:2.25rem 0 .6rem;padding-bottom:.3rem;border-bottom:1px solid var(--line)}
h3{font-size:1rem;margin:1.1rem 0 .4rem}
h4{font-size:.9rem;margin:.8rem 0 .3rem;color:var(--muted)}
p{margin:.4rem 0}
a{color:var(--link)}
ul.changes{margin:.1rem 0;padding-left:1.1rem;font-size:.85em}
small,.muted{color:var(--muted);font-size:.85em}
nav ul{display:flex;flex-wrap:wrap;gap:.3rem 1.1rem;list-style:none;margin:1rem 0 0;padding:.6rem 0;
border-top:1px solid var(--line);border-bottom:1px solid var(--line)}
.scroll{overflow-x:auto;max-width:100%;margin:.4rem 0;background-image:linear-gradient(to right,var(--bg) 40%,transparent),
linear-gradient(to left,var(--bg) 40%,transparent),linear-gradient(to right,var(--shade),transparent),
linear-gradient(to left,var(--shade),transparent);background-position:0 0,100% 0,0 0,100% 0;background-repeat:no-repeat;
background-size:2.5rem 100%,2.5rem 100%,.8rem 100%,.8rem 100%;background-attachment:local,local,scroll,scroll}
table{border-collapse:collapse;font-size:.875rem;min-width:100%}
th,td{text-align:left;vertical-align:top;padding:.3rem .75rem .3rem 0;border-bottom:1px solid var(--line);
max-width:28rem;overflow-wrap:break-word}
thead th{color:var(--muted);font-weight:600;white-space:nowrap}
tbody th{font-weight:600}
table.keep td,table.keep th{white-space:nowrap}
table.lines td:last-child{max-width:none;min-width:14rem;width:100%}
table.lines td:first-child{white-space:nowrap}
table.lines td:first-child bdi{display:block;min-width:12rem;white-space:normal;overflow-wrap:anywhere}
table.delivery tr.flow th{font-weight:400;padding-left:1rem;white-space:nowrap}
table.delivery tr>:nth-child(n+3):nth-child(-n+7){text-align:right;font-variant-numeric:tabular-nums}
table.keep bdi{display:inline-block;max-width:16rem;white-space:normal;vertical-align:top}
dl{margin:.3rem 0;font-size:.875rem}
dl>div{display:grid;grid-template-columns:minmax(7rem,15rem) minmax(0,1fr);gap:.75rem;padding:.1rem 0}
dt,.key{color:var(--muted)}
dd{margin:0;min-width:0}
dl.members{display:grid;grid-template-columns:repeat(auto-fill,minmax(12rem,1fr));gap:.35rem 1.25rem}
dl.members>div{display:block;padding:0;min-width:0}
dl.members>.wide{grid-column:1/-1}
dl.members dt{font-size:.8rem;line-height:1.25}
.leaf{margin:.2rem 0;font-size:.875rem}
.pair{margin-right:.5rem}
details{margin:.3rem 0}
summary{cursor:pointer;padding:.15rem 0}
summary:focus-visible,a:focus-visible{outline:2px solid var(--link);outline-offset:2px}
details.item{border:1px solid var(--line);border-radius:6px;padding:.25rem .75rem;margin:.5rem 0}
details.doc,details.programme{border-top:1px solid var(--line);padding:.15rem 0}
details.tree{border-left:2px solid var(--line);padding-left:.75rem;margin-left:.15rem}
details.tree>summary{margin-left:-.2rem;font-size:.875rem}
details.tree table{min-width:0}
.badge{display:inline-block;border-radius:4px;padding:0 .4rem;font-size:.8rem;background:var(--soft);color:var(--muted);
white-space:nowrap}
.bad{background:var(--badbg);color:var(--bad)}
.warn{background:var(--warnbg);color:var(--warn)}
.good{background:var(--goodbg);color:var(--good)}
p.verdict{border-radius:6px;padding:.5rem .75rem;font-weight:600}
p.verdict a{color:inherit}
.target{scroll-margin-top:5rem}
td.time{white-space:nowrap}
.time{font-variant-numeric:tabular-nums}
.epg{display:grid;width:max-content;grid-template-rows:1.6rem;grid-auto-rows:minmax(2.9rem,auto);font-size:.8125rem;border-bottom:1px solid var(--line)}
.epg .hour{border-left:1px solid var(--line);padding:.1rem .35rem;color:var(--muted)}
.epg .name{grid-column:1;position:sticky;left:0;z-index:1;background:var(--bg);font-weight:600;padding:.35rem .5rem .35rem 0;
border-top:1px solid var(--line);max-height:6rem;overflow:hidden}
.epg .box{display:block;height:calc(100% - 4px);min-width:0;max-height:5rem;overflow:hidden;margin:2px 1px;
padding:.2rem .4rem;border-radius:4px;background:var(--box);border-left:3px solid var(--link);color:var(--text);
text-decoration:none;line-height:1.3;overflow-wrap:normal}
.epg .box b{display:block;overflow:hidden;text-overflow:ellipsis;max-height:2.6em}
.epg .box:hover b{text-decoration:underline}
.epg .box small{display:block;white-space:nowrap}
.chart{display:block;width:100%;min-width:40rem;max-width:48rem;height:auto;font-size:13px}
.marks{display:block;width:100%;min-width:30rem;max-width:42rem;height:auto;font-size:12px}
table.arrivals tbody th{min-width:clamp(9.5rem,25vw,18rem)}
table.arrivals td{white-space:nowrap;vertical-align:middle}
table.arrivals td:nth-child(2){max-width:none;width:100%}
.came{stroke:var(--c0);stroke-width:2}
.running{stroke:var(--muted)}
.silence{stroke:var(--warn);stroke-width:2;stroke-dasharray:4 4}
svg .changed{fill:var(--c1)}
.legend svg{width:1.25rem;height:1.25rem;vertical-align:middle}
svg text{fill:var(--muted)}
svg path{fill:none}
.rule{stroke:var(--line)}
.axis{stroke:var(--muted)}
.legend{list-style:none;margin:.2rem 0 1.2rem;padding:0;font-size:.875rem;display:flex;flex-wrap:wrap;gap:.1rem 1.25rem}
.legend span{display:inline-block;width:.8rem;height:.8rem;-webkit-print-color-adjust:exact;print-color-adjust:exact}
svg .c0{fill:var(--c0)}svg .c1{fill:var(--c1)}svg .c2{fill:var(--c2)}svg .c3{fill:var(--c3)}svg .c4{fill:var(--c4)}
svg .c5{fill:var(--c5)}svg .rest{fill:var(--muted)}
span.c0{background:var(--c0)}span.c1{background:var(--c1)}span.c2{background:var(--c2)}span.c3{background:var(--c3)}
span.c4{background:var(--c4)}span.c5{background:var(--c5)}span.rest{background:var(--muted)}
footer{margin-top:3rem;padding-bottom:2rem}
@media(max-width:640px){
header,nav,main,footer{padding-left:.9rem;padding-right:.9rem}
dl>div{grid-template-columns:minmax(0,1fr);gap:0;padding:.2rem 0}
dl.members{grid-template-columns:repeat(auto-fill,minmax(8.5rem,1fr));gap:.3rem .75rem}
details.item{padding:.2rem .6rem}
details.tree{padding-left:.5rem}
.grid{display:none}
table.lines,table.lines tbody,table.lines tr,table.lines td{display:block;width:auto;min-width:0}
table.lines td{border:0;padding:0}
table.lines tr{border-bottom:1px solid var(--line);padding:.35rem 0}
table.lines thead{display:none}
table.lines td:first-child{color:var(--muted)}
}
@media print{.scroll{overflow:visible}.chart,.marks{min-width:0}nav{display:none}}
)";

}  // namespace vyr::inspect
