#include "analysis/ReportStyle.h"

namespace zenka::analysis {

// On the screen body text has a contrast of at least 7:1 on the page, the cards and the banners.
constinit const std::string_view reportStyle = R"css(
:root{color-scheme:dark;--page:#0a0e16;--card:#121a27;--edge:#26344a;--text:#e6edf5;--quiet:#b3c1d3;
--green:#37d67a;--amber:#ffb02b;--red:#ff5b5b;--alarm:#ff6b6b;--pale:#ffcf6b}
*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%}
body{margin:0 auto;padding:24px 20px 40px;max-width:1140px;background:var(--page);color:var(--text);
font:16px/1.55 system-ui,-apple-system,"Segoe UI",Roboto,"DejaVu Sans",sans-serif;overflow-wrap:anywhere}
h1{font-size:1.6rem;line-height:1.25;margin:0 0 4px}
h2{font-size:1.1rem;line-height:1.35;margin:0 0 8px}
p{margin:0}
.sub{color:var(--quiet);margin:0 0 18px}
.accent{color:var(--pale)}
.mono{font-family:ui-monospace,"DejaVu Sans Mono",Menlo,Consolas,monospace}
.banner{border:1px solid;border-radius:12px;padding:18px 22px;margin:0 0 16px}
.banner.pass{color:#37d67a;background:linear-gradient(135deg,#143524,#0c1a12);border-color:#1f6b40}
.banner.review{color:#ffb02b;background:linear-gradient(135deg,#3a2e10,#1a1508);border-color:#6b551f}
.banner h2{font-size:2rem;line-height:1.2;letter-spacing:.04em;margin:0 0 4px}
.banner p{color:var(--text)}
.tiles{display:flex;flex-wrap:wrap;gap:10px;margin:0 0 16px}
.tile,.card{background:var(--card);border:1px solid var(--edge);border-radius:12px}
.tile{display:flex;flex-direction:column;flex:1 1 118px;padding:12px 13px}
.tile dt{order:2;max-width:8.5rem;color:var(--quiet);font-size:.85rem;line-height:1.35}
.tile dd{margin:0;font-size:1.3rem;font-weight:650;line-height:1.35;font-variant-numeric:tabular-nums;
white-space:nowrap}
.card{padding:16px 20px;margin:0 0 16px}
.note{border-left:4px solid var(--quiet)}
.warn{border-left:4px solid var(--amber)}.warn h2{color:var(--amber)}
.wrong{border-left:4px solid var(--red)}.wrong h2{color:var(--red)}
.rounded{border-left:4px solid var(--pale)}.rounded h2{color:var(--pale)}
.silent{border-color:#7a1f1f;background:#1e0b0b}.silent h2{color:#ff6b6b}
.healthy{border-color:#1f6b40;background:#0c1a12}.healthy h2{color:var(--green)}
h2 small{font-size:.85rem;font-weight:400;color:var(--quiet)}
.scroll{overflow-x:auto}
svg{display:block;width:100%;min-width:760px;height:auto}
.legend{display:flex;flex-wrap:wrap;gap:4px 20px;margin:8px 0 0;color:var(--quiet);font-size:.9rem}
.legend i{display:inline-block;width:10px;height:10px;border-radius:50%;margin-right:7px}
.ph{border-top:1px solid var(--edge)}
.ph summary{cursor:pointer;padding:9px 4px}
.ph summary:hover{background:#1a2536}
.ph summary:focus-visible{outline:2px solid var(--amber);outline-offset:-2px}
.ph b{margin-right:8px}
table{border-collapse:collapse;width:100%;margin:0 0 10px;font-size:.92rem;font-variant-numeric:tabular-nums}
th,td{text-align:left;padding:5px 14px 5px 4px;border-bottom:1px solid var(--edge);vertical-align:top;
overflow-wrap:normal}
th{color:var(--quiet);font-weight:600}
.ph th,.ph td:nth-child(2),.ph td:nth-child(3),.ph td:nth-child(4){white-space:nowrap}
.ph td:first-child{min-width:11em}
.bad,.bad td{color:#ff8585;font-weight:600}
footer{color:var(--quiet);font-size:.85rem;text-align:center;margin-top:24px}
@media (max-width:520px){body{padding:16px 12px 32px}.card{padding:14px}.banner{padding:14px 16px}
.tiles{gap:8px}.tile{flex-basis:40%;padding:10px 12px}
.ph table{font-size:.8rem}.ph td:nth-child(2){white-space:normal;min-width:5.2em}
th,td{padding:5px 7px 5px 2px}.ph td:first-child{min-width:7em}}
@page{margin:14mm}
@media print{:root{color-scheme:light;--page:#fff;--card:#fff;--edge:#999;--text:#000;--quiet:#333;
--green:#0a5c2e;--amber:#7a4a00;--red:#a30f0f;--alarm:#a30f0f;--pale:#6b4a00}
body{max-width:none;padding:0;font-size:10.5pt}
.banner.pass,.banner.review,.silent,.healthy{background:none}
.banner.pass{color:#0a5c2e}.banner.review{color:#7a4a00}.silent h2{color:#a30f0f}
.bad,.bad td{color:#a30f0f}
.banner,.tile,.card.keep,tr,summary{break-inside:avoid}h2,summary{break-after:avoid}
.scroll{overflow:visible}svg{min-width:0}svg text{fill:#333}
.legend i,circle{print-color-adjust:exact;-webkit-print-color-adjust:exact}}
)css";

} // namespace zenka::analysis
