// Sorts and filters the table of files. Nothing here makes markup of text.
"use strict";

// Rows at a time: a browser lays out a hundred thousand in a minute, and a thousand at once.
const ROWS = 1000;

// Set before the first row is read: rows show when they are chosen. Without script all of them do.
document.documentElement.classList.add("scripted");

addEventListener("DOMContentLoaded", () => {
    const table = document.getElementById("documents");
    const headers = Array.from(table.tHead.rows[0].cells);
    const boxes = Array.from(document.querySelectorAll("#controls input[type=checkbox]"));
    const find = document.getElementById("find");
    const status = document.getElementById("status");
    const more = document.getElementById("more");
    const outcomes = boxes.map((box) => box.value);
    const words = new Intl.Collator("en", { numeric: true });

    // Each file is a body of the table: its row, and below it what its spacings become.
    const entries = Array.from(table.tBodies, (body) => ({ body, text: null, key: null }));
    let limit = ROWS;

    const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, "\u202f");

    const isChosen = (entry, wanted, text) => {
        if (!wanted.has(entry.body.dataset.outcome)) {
            return false;
        }
        if (text !== "" && entry.text === null) {
            entry.text = entry.body.textContent.toLowerCase();
        }
        return text === "" || entry.text.includes(text);
    };

    const show = () => {
        const wanted = new Set(boxes.filter((box) => box.checked).map((box) => box.value));
        const text = find.value.trim().toLowerCase();
        let chosen = 0;
        for (const entry of entries) {
            const isOne = isChosen(entry, wanted, text);
            entry.body.classList.toggle("shown", isOne && chosen < limit);
            chosen += isOne ? 1 : 0;
        }
        const shown = Math.min(chosen, limit);
        more.hidden = shown === chosen;
        status.textContent = `${grouped(shown)} of ${grouped(entries.length)} files shown` +
            (shown < chosen ? `, ${grouped(chosen - shown)} more match` : "");
    };

    const showAnew = () => {
        limit = ROWS;
        show();
    };

    // What a file is sorted by; null, for what is not there, comes last in either direction.
    const keys = {
        text: (cell) => cell.textContent,
        outcome: (cell) => outcomes.indexOf(cell.parentNode.parentNode.dataset.outcome),
        losses: (cell) => Number(cell.dataset.losses),
        number: (cell) => {
            const digits = cell.textContent.replace(/[^0-9.]/g, "");
            return digits === "" ? null : Number(digits);
        },
    };

    const compare = (one, other, sign) => {
        if (one === null || other === null) {
            return (one === null) - (other === null);
        }
        return sign * (typeof one === "string" ? words.compare(one, other) : one - other);
    };

    const sort = (header, column) => {
        const isAscending = header.getAttribute("aria-sort") !== "ascending";
        const sign = isAscending ? 1 : -1;
        for (const entry of entries) {
            entry.key = keys[header.dataset.sort](entry.body.rows[0].cells[column]);
        }
        entries.sort((one, other) => compare(one.key, other.key, sign));
        const sorted = document.createDocumentFragment();
        for (const entry of entries) {
            sorted.append(entry.body);
        }
        showAnew();
        table.append(sorted);
        headers.forEach((each) => each.removeAttribute("aria-sort"));
        header.setAttribute("aria-sort", isAscending ? "ascending" : "descending");
    };

    const addButton = (header, column) => {
        const button = document.createElement("button");
        button.type = "button";
        button.append(...header.childNodes);
        button.addEventListener("click", () => sort(header, column));
        header.append(button);
    };

    headers.forEach(addButton);
    boxes.forEach((box) => box.addEventListener("change", showAnew));

    // While somebody types, the page waits for the end of the word.
    let timer = 0;
    find.addEventListener("input", () => {
        clearTimeout(timer);
        timer = setTimeout(showAnew, 150);
    });

    document.getElementById("reset").addEventListener("click", () => {
        find.value = "";
        boxes.forEach((box) => { box.checked = true; });
        showAnew();
    });

    more.addEventListener("click", () => {
        limit += ROWS;
        show();
        if (more.hidden) {
            // Whoever works from the keyboard must not fall out of the page.
            status.focus();
        }
    });

    // On paper all that is chosen stands, and unfolded also where the style cannot do that.
    let afterPrint = () => {};
    addEventListener("beforeprint", () => {
        const before = limit;
        limit = Infinity;
        show();
        const folded = Array.from(table.querySelectorAll(".shown details:not([open])"));
        folded.forEach((details) => { details.open = true; });
        afterPrint = () => {
            folded.forEach((details) => { details.open = false; });
            limit = before;
            show();
        };
    });
    addEventListener("afterprint", () => afterPrint());

    document.getElementById("controls").hidden = false;
    // A browser may have kept what was asked for before the page was loaded again.
    show();
});
