// Texts that try to become markup, as file names, check names, modes and error texts.

import { analyzed, errored, OTHER_PAGE } from "./reports.js";

/**
 * Each text as its bytes; what a reader must see, where it differs (a carriage return
 * becomes a line feed in any HTML document, bytes that are not UTF-8 become replacement
 * characters); what a reader must see of it as an error text, which is decoded once; and
 * the target of a link, in which backslashes separate folders like slashes. None is longer than the 39 bytes that are kept of a name.
 */
const TEXTS = [
  ["<script>hit()</script>"],
  ["<img src=x onerror=hit()>"],
  ["<img src=http:a.test srcset=b.test>"],
  ["<svg onload=hit()>"],
  ['"><b onclick=hit()>'],
  ["' onmouseover='hit()"],
  ['" onfocus="hit()" autofocus="'],
  ["&lt;i&gt; &amp;amp; &quot;&#39;", undefined, "<i> &amp; \"'"],
  ["&lt &copy; &#0; &#60;b&#x3e; & &&"],
  ["</style><style>*{display:none}"],
  ["</title></td></tr></table></section>"],
  ["]]><![CDATA[x"],
  ["<!--"],
  ["--><!-- --!>"],
  ["<!doctype x><?php x ?>"],
  ["`${hit()}`{{hit()}}"],
  ["<base href=http:a.test>"],
  ["<link rel=prefetch href=http:a.test>"],
  ["<meta http-equiv=refresh content=0>"],
  ["<iframe srcdoc=hit()>"],
  ["<form action=x><input autofocus>"],
  ["<plaintext><textarea><noscript>"],
  ["tab\there\u0001\u0002\u001b[31m\u007f"],
  ["line\nfeed\n"],
  ["carriage\rreturn\r\nboth", "carriage\nreturn\nboth"],
  ["\u202egpj.exe\u202c \u200f\u2066x\u2069"],
  ["\u0085\u2028\u2029\ufeff\u{1f50a} e\u0301"],
  ["expression(hit()) url(javascript:hit())"],
  [
    "\\u003cscript\\u003e \\\\ \\n %3Cscript%3E",
    undefined,
    undefined,
    "/u003cscript/u003e / /n %3Cscript%3E",
  ],
  ["  two  blanks, one at the end "],
  [Buffer.from("bad \xff\xfe byte", "latin1"), "bad \ufffd\ufffd byte"],
  [Buffer.from("cut \xe2\x82", "latin1"), "cut \ufffd"],
  [Buffer.from("\xc0\xbcscript\xc0\xbe", "latin1"), "\ufffd\ufffdscript\ufffd\ufffd"],
];

export const HOSTILE = TEXTS.map(([text, shown, decoded, linked]) => ({
  bytes: Buffer.from(text),
  shown: shown ?? text,
  decoded: decoded ?? shown ?? text,
  linked: linked ?? shown ?? text,
}));

/** The same texts without anything hostile: their separators stay, all else becomes an x. */
export const HARMLESS = HOSTILE.map((text) => ({
  bytes: Buffer.from(text.bytes.map((byte) => (byte === 0x2f || byte === 0x5c ? byte : 0x78))),
}));

/** Joins texts and buffers. */
function bytes(...parts) {
  return Buffer.concat(parts.map((part) => Buffer.from(part)));
}

function fill(template, text) {
  const parts = template.split("@");
  return bytes(...parts.flatMap((part, index) => (index === 0 ? [part] : [text, part])));
}

/** The name that row number index has in the folder, before the ending. */
export function rowName(folder, index, text) {
  return `${folder}/${100 + index} ${text}`;
}

const MARKED = { mode: "@", subMode: "@", failed: ["@", "x"], nonGating: ["@"] };
const KINDS = [
  ["failed", analyzed("FAIL", MARKED)],
  ["passed", analyzed("PASS", MARKED)],
  ["errored", errored("@")],
  ["other", OTHER_PAGE],
];

/** For each text a failed, a passed and an errored report and another file, all full of it. */
export function treeOf(texts) {
  return texts.flatMap((text, index) =>
    KINDS.map(([folder, template]) => [
      bytes(rowName(folder, index, ""), text.bytes, ".html"),
      fill(template, text.bytes),
    ]),
  );
}
