"use strict";
// The page reads as well without this: it only searches and folds.
(function () {
  const tools = document.querySelector(".tools");
  if (!tools) {
    return;
  }
  const search = document.getElementById("search");
  const found = document.getElementById("found");
  const fold = document.getElementById("fold");
  const items = Array.from(document.querySelectorAll("[data-item]"));
  const folds = Array.from(document.querySelectorAll("details"));
  const texts = items.map((item) => item.textContent.toLowerCase());
  tools.hidden = false;

  function find() {
    const words = search.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    let count = 0;
    items.forEach((item, i) => {
      const holds = words.every((word) => texts[i].includes(word));
      item.hidden = !holds;
      count += holds ? 1 : 0;
    });
    found.textContent = words.length === 0 ? "" : count + " of " + items.length;
  }

  function setFolded(folded) {
    folds.forEach((element) => { element.open = !folded; });
    fold.setAttribute("aria-pressed", String(folded));
    fold.textContent = folded ? "Unfold all" : "Fold all";
  }

  search.addEventListener("input", find);
  fold.addEventListener("click", () => setFolded(fold.getAttribute("aria-pressed") !== "true"));
  // Paper cannot be unfolded, and a link leads to what it names.
  window.addEventListener("beforeprint", () => setFolded(false));
  window.addEventListener("hashchange", () => {
    const target = document.getElementById(decodeURIComponent(location.hash.slice(1)));
    const inner = target && target.querySelector("details");
    if (inner) {
      inner.open = true;
    }
  });
}());
