// The style of the tour's page: light and dark, wide and narrow.
#pragma once

namespace tools {

constexpr char kTourStyle[] = R"css(
:root {
  color-scheme: light dark;
  --page: #f6f7f9; --card: #ffffff; --ink: #16191f; --soft: #5a6270; --line: #dfe3e9;
  --accent: #0b6bcb; --code: #f0f3f7; --after: #0a7d55; --mind: #c77700;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #0e1116; --card: #171b22; --ink: #e8ebf0; --soft: #9aa4b2; --line: #2a303a;
    --accent: #6cb6ff; --code: #10141a; --after: #4cc38a; --mind: #f2a93b;
  }
}
* { box-sizing: border-box; }
html { scroll-padding-top: 3.4rem; }
body {
  margin: 0; background: var(--page); color: var(--ink);
  font: 1rem/1.55 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", sans-serif;
}
header, main, footer, nav ul { max-width: 92rem; margin: 0 auto; padding: 0 clamp(1rem, 4vw, 3rem); }
header { display: flex; flex-wrap: wrap; gap: 0 3rem; align-items: center; padding-bottom: 1.5rem; }
header > div { flex: 1 1 22rem; }
header > a { flex: 1 1 22rem; min-width: 0; max-width: 32rem; border-radius: 0.8rem; overflow: hidden;
             margin-top: clamp(0rem, 4vw, 2rem); }
@media (max-width: 50rem) { header > a { max-width: 100%; } }
h1 { font-size: clamp(2.2rem, 6vw, 3.4rem); line-height: 1.1; letter-spacing: -0.03em;
     margin: clamp(1.5rem, 5vw, 3.5rem) 0 0.5rem; }
h1 span { color: var(--soft); font-weight: 300; }
h2 { font-size: clamp(1.5rem, 3.5vw, 2rem); letter-spacing: -0.02em; margin: 0 0 0.4rem; }
h3 { font-size: 1rem; margin: 0; line-height: 1.35; }
h3 small { font-size: 0.7rem; font-weight: 600; text-transform: uppercase; letter-spacing: 0.07em;
           color: var(--soft); border: 1px solid var(--line); border-radius: 1rem;
           padding: 0.1rem 0.5rem; margin-right: 0.35rem; vertical-align: 0.1em; }
.after h3 small { color: var(--after); border-color: currentColor; }
.lead { max-width: 46rem; color: var(--soft); margin: 0 0 1.4rem; }
.lead code, figcaption > p code { font-size: 0.9em; color: var(--ink); }
a { color: var(--accent); }
.skip { position: absolute; left: -99rem; }
.skip:focus { left: 1rem; top: 1rem; background: var(--card); padding: 0.5rem 1rem; z-index: 2; }
dl { display: flex; flex-wrap: wrap; gap: 0.6rem 2.2rem; margin: 0 0 1.8rem; }
dt { font-size: 0.8rem; color: var(--soft); }
dd { margin: 0; font-weight: 600; overflow-wrap: anywhere; }
nav { position: sticky; top: 0; z-index: 1; background: var(--page);
      border-bottom: 1px solid var(--line); }
nav ul { display: flex; gap: 0.4rem 1.6rem; list-style: none; overflow-x: auto; }
nav a { display: block; padding: 0.8rem 0; white-space: nowrap; text-decoration: none;
        font-weight: 500; }
nav a:hover { text-decoration: underline; text-underline-offset: 0.3em; }
section { padding: clamp(2rem, 5vw, 3.5rem) 0 0; }
.compare { display: grid; gap: 1.2rem; grid-template-columns: 1fr; align-items: start; }
.after, .before { display: grid; gap: 1.2rem; align-items: start;
                  grid-template-columns: repeat(auto-fit, minmax(min(100%, 20rem), 1fr)); }
@media (min-width: 62rem) {
  .compare { grid-template-columns: minmax(17rem, 1fr) 2.2fr; }
  .before { grid-template-columns: 1fr; position: sticky; top: 4.2rem; }
}
figure { margin: 0; background: var(--card); border: 1px solid var(--line); border-radius: 0.8rem;
         overflow: hidden; min-width: 0; }
img { display: block; width: 100%; height: auto; max-height: 36rem; object-fit: contain; }
.whole { display: block; cursor: zoom-in; }
.shared { display: block; width: 100%; max-height: 36rem; background: center / contain no-repeat; }
.magnified { image-rendering: pixelated; }
figcaption { padding: 0.85rem 1rem 1rem; }
figcaption > p { margin: 0.35rem 0 0; font-size: 0.9rem; color: var(--soft); }
.call { margin-top: 0.75rem; }
pre { margin: 0; padding: 0.6rem 0.75rem; background: var(--code); border-radius: 0.5rem;
      white-space: pre-wrap; overflow-wrap: anywhere;
      font: 0.78rem/1.5 ui-monospace, "SF Mono", "Cascadia Code", Menlo, Consolas, monospace; }
code { font-family: ui-monospace, "SF Mono", "Cascadia Code", Menlo, Consolas, monospace; }
pre b { color: var(--accent); font-weight: 600; }
.call p { display: flex; flex-wrap: wrap; align-items: baseline; gap: 0 0.6rem; margin: 0.4rem 0 0;
          font-size: 0.82rem; color: var(--soft); font-variant-numeric: tabular-nums; }
.call strong { font-size: 1.05rem; color: var(--ink); }
.call span:not(:last-child)::after { content: "·"; margin-left: 0.6rem; }
summary { cursor: pointer; font-size: 0.82rem; color: var(--accent); margin-top: 0.3rem; }
details pre { margin-top: 0.4rem; white-space: pre; overflow-x: auto; overflow-wrap: normal; }
.caution { max-width: 46rem; margin: 0 0 0.8rem; padding: 0.5rem 0.9rem; font-size: 0.9rem;
           background: var(--card); border: 1px solid var(--line); border-radius: 0.5rem;
           border-left: 0.3rem solid var(--mind); }
.caution code { font-size: 0.9em; }
.legend { margin-top: 0.6rem; }
.legend div { height: 0.55rem; border-radius: 0.3rem; border: 1px solid var(--line); }
.legend p { display: flex; justify-content: space-between; margin: 0.15rem 0 0; font-size: 0.78rem;
            color: var(--soft); font-variant-numeric: tabular-nums; }
footer { padding-top: 2.5rem; padding-bottom: 3rem; font-size: 0.85rem; color: var(--soft); }
footer p { max-width: 46rem; margin: 0; }
@media print { nav { display: none; } figure { break-inside: avoid; } .before { position: static; } }
)css";

}  // namespace tools
