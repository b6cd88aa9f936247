// Sorts and filters the table of files. Nothing here makes markup of text.
"use strict";
{
    const table = document.getElementById("documents");
    const boxes = Array.from(document.querySelectorAll("#controls input[type=checkbox]"));
    const find = document.getElementById("find");
    const shown = document.getElementById("shown");
    const outcomes = boxes.map((box) => box.value);
    const words = new Intl.Collator("en", { numeric: true });

    // Each file is a body of the table: its row, and below it what its spacings become.
    const entries = Array.from(table.tBodies, (body) => ({ body, text: null }));

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

    const compare = (one, other) =>
        typeof one === "string" ? words.compare(one, other) : one - other;

    const sort = (header, column) => {
        const isAscending = header.getAttribute("aria-sort") !== "ascending";
        const sign = isAscending ? 1 : -1;
        for (const entry of entries) {
            entry.key = keys[header.dataset.sort](entry.body.rows[0].cells[column]);
        }
        entries.sort((one, other) => {
            if (one.key === null || other.key === null) {
                return (one.key === null) - (other.key === null);
            }
            return sign * compare(one.key, other.key);
        });
        const sorted = document.createDocumentFragment();
        for (const entry of entries) {
            sorted.append(entry.body);
        }
        table.append(sorted);
        for (const each of table.tHead.rows[0].cells) {
            each.removeAttribute("aria-sort");
        }
        header.setAttribute("aria-sort", isAscending ? "ascending" : "descending");
    };

    const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, "\u202f");

    const filter = () => {
        const wanted = new Set(boxes.filter((box) => box.checked).map((box) => box.value));
        const text = find.value.trim().toLowerCase();
        let count = 0;
        for (const entry of entries) {
            if (text !== "" && entry.text === null) {
                entry.text = entry.body.textContent.toLowerCase();
            }
            const isShown = wanted.has(entry.body.dataset.outcome) &&
                (text === "" || entry.text.includes(text));
            entry.body.hidden = !isShown;
            count += isShown ? 1 : 0;
        }
        shown.textContent = `${grouped(count)} of ${grouped(entries.length)} files shown`;
    };

    const addButton = (header, column) => {
        const button = document.createElement("button");
        button.type = "button";
        button.append(...header.childNodes);
        button.addEventListener("click", () => sort(header, column));
        header.append(button);
    };

    // While somebody types, the page waits for the end of the word.
    let timer = 0;
    find.addEventListener("input", () => {
        clearTimeout(timer);
        timer = setTimeout(filter, 150);
    });
    for (const box of boxes) {
        box.addEventListener("change", filter);
    }
    document.getElementById("reset").addEventListener("click", () => {
        find.value = "";
        for (const box of boxes) {
            box.checked = true;
        }
        filter();
    });

    // Browsers that do not print what is folded.
    let unfolded = [];
    addEventListener("beforeprint", () => {
        unfolded = Array.from(table.querySelectorAll("details:not([open])"));
        for (const each of unfolded) {
            each.open = true;
        }
    });
    addEventListener("afterprint", () => {
        for (const each of unfolded) {
            each.open = false;
        }
    });

    Array.from(table.tHead.rows[0].cells).forEach(addButton);
    document.getElementById("controls").hidden = false;
    // A browser may have kept what was asked for before the page was loaded again.
    filter();
}
