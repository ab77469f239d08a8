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
  const texts = items.map((item) => item.textContent.toLowerCase());
  // What is shown only with the items that it stands for or holds.
  const rest = Array.from(document.querySelectorAll("main [data-of], main [data-group]"));
  const stands = new Map();
  rest.forEach((element) => {
    const list = stands.get(element.dataset.of) || [];
    stands.set(element.dataset.of, list.concat(element));
  });

  function show(element) {
    for (let outer = element; outer; outer = outer.parentElement) {
      outer.hidden = false;
    }
  }

  function find() {
    const words = search.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    const all = words.length === 0;
    let count = 0;
    items.concat(rest).forEach((element) => { element.hidden = !all; });
    items.forEach((item, i) => {
      if (!all && words.every((word) => texts[i].includes(word))) {
        show(item);
        (stands.get(item.id) || []).forEach(show);
        count += 1;
      }
    });
    found.textContent = all ? "" : count + " of " + items.length;
  }

  const folds = Array.from(document.querySelectorAll("details"));
  const isMore = (element) => element.classList.contains("more");
  let folded = false;

  function setFolded(fold_) {
    folded = fold_;
    folds.forEach((element) => { element.open = !folded; });
    fold.textContent = folded ? "Unfold all" : "Fold all";
  }

  // A link leads to what can be seen.
  function unfoldTarget() {
    const target = document.getElementById(location.hash.slice(1));
    const inner = target && target.querySelector("details");
    if (inner) {
      inner.open = true;
    }
  }

  // Paper cannot be unfolded.
  let closed = [];
  function unfoldForPaper() {
    closed = folds.filter((element) => !element.open);
    closed.forEach((element) => { element.open = true; });
  }
  function foldAgain() {
    closed.forEach((element) => { element.open = false; });
  }

  folds.filter(isMore).forEach((element) => { element.open = false; });
  fold.hidden = folds.length === 0;
  tools.hidden = false;
  search.addEventListener("input", find);
  fold.addEventListener("click", () => setFolded(!folded));
  window.addEventListener("beforeprint", unfoldForPaper);
  window.addEventListener("afterprint", foldAgain);
  window.addEventListener("hashchange", unfoldTarget);
  unfoldTarget();
}());
// Two histories compared: the lines of large ones cross.
(function () {
  const sides = document.querySelector(".sides");
  if (!sides) {
    return;
  }
  const search = document.getElementById("search");

  function mark(event) {
    const row = event.type.endsWith("over") || event.type === "focusin"
      ? event.target.closest("li[data-pair]") : null;
    sides.querySelectorAll("li").forEach((other) => {
      other.classList.toggle("marked", row !== null && other.dataset.pair === row.dataset.pair);
    });
  }

  // Pairs without a difference are many: they are unfolded where one of them is looked for.
  const same = document.querySelector("#same details");
  const isSameOpen = same !== null && same.open;
  function unfoldSame() {
    if (same) {
      same.open = isSameOpen || search.value.trim() !== "";
    }
  }

  // What is not found stays where it is, since the lines lead there.
  function fade() {
    sides.querySelectorAll("li").forEach((row) => {
      const target = document.getElementById(row.querySelector("a").hash.slice(1));
      row.classList.toggle("missed", target.hidden);
    });
  }

  ["pointerover", "pointerleave", "focusin", "focusout"].forEach((kind) => {
    sides.addEventListener(kind, mark);
  });
  search.addEventListener("input", unfoldSame);
  search.addEventListener("input", fade);
}());
