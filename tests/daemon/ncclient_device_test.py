"""ocsysmapd driven by ncclient: OpenConfig edits land in the native store and
come back through get-config and get; refusals come back as rpc-errors.

usage: ncclient_device_test.py OCSYSMAPD MODELS_DIR
"""
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import OC, ServedTestCase, config, oc_filter, system_of  # noqa: E402
from ncclient.operations import RPCError  # noqa: E402

NS = {"oc": OC}

# name, edit body, a path of the get-config answer, its text.
EDITS = [
    ("host name", "<config><hostname>router-9</hostname></config>",
     "oc:config/oc:hostname", "router-9"),
    ("NTP server",
     "<ntp><servers><server><address>192.0.2.1</address><config><address>192.0.2.1</address>"
     "<version>4</version><association-type>SERVER</association-type></config></server>"
     "</servers></ntp>",
     "oc:ntp/oc:servers/oc:server/oc:config/oc:version", "4"),
    ("DNS server",
     "<dns><servers><server><address>192.0.2.53</address><config><address>192.0.2.53</address>"
     "</config></server></servers></dns>",
     "oc:dns/oc:servers/oc:server/oc:address", "192.0.2.53"),
    ("logging server",
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><config><host>192.0.2.9"
     "</host><remote-port>514</remote-port></config></remote-server></remote-servers></logging>",
     "oc:logging/oc:remote-servers/oc:remote-server/oc:config/oc:remote-port", "514"),
    ("user",
     "<aaa><authentication><users><user><username>alice</username><config><username>alice"
     "</username><password>s3cret</password><role "
     'xmlns:oc-aaa-types="http://openconfig.net/yang/aaa/types">oc-aaa-types:SYSTEM_ROLE_ADMIN'
     "</role></config></user>"
     "</users></authentication></aaa>",
     "oc:aaa/oc:authentication/oc:users/oc:user/oc:config/oc:username", "alice"),
]

NTP_DELETE = ('<ntp><servers><server nc:operation="delete"><address>192.0.2.1</address>'
              '</server></servers></ntp>')


class DeviceTest(ServedTestCase):
    def store_bytes(self):
        with open(self.store, "rb") as f:
            return f.read()

    def test_edits_come_back_in_openconfig_and_a_delete_takes_one_away(self):
        for name, body, _, _ in EDITS:
            with self.subTest(edit=name):
                self.assertTrue(self.nc.edit_config(target="running", config=config(body)).ok)
        answer = system_of(self.nc.get_config(source="running"))
        for name, _, path, text in EDITS:
            with self.subTest(read=name):
                self.assertEqual(answer.findtext(path, namespaces=NS), text)

        self.nc.edit_config(target="running", config=config(NTP_DELETE))
        answer = system_of(self.nc.get_config(source="running"))
        self.assertIsNone(answer.find("oc:ntp/oc:servers/oc:server", NS))
        self.assertEqual(answer.findtext("oc:config/oc:hostname", namespaces=NS), "router-9")

    def test_refused_edits_answer_an_rpc_error_and_change_nothing(self):
        self.nc.edit_config(target="running", config=config(EDITS[0][1]))
        before = self.store_bytes()
        cases = [
            # body, error-tag, error-path, bad-element, error-app-tag
            # The mapping refuses it, so the device does not advertise it.
            ("<telnet-server><config><enable>true</enable></config></telnet-server>",
             "unknown-element", "/openconfig-system:system/telnet-server/config", "config", None),
            # The models refuse it before the mapping sees it.
            ("<config><bogus>1</bogus></config>", "unknown-element", None, "bogus", None),
            ("<config><hostname>a b</hostname></config>", "invalid-value", None, None, None),
            # An attribute in a module's namespace once crashed the model check.
            (f'<config xmlns:x="{OC}" x:operation="merge"><hostname>a</hostname></config>',
             "invalid-value", None, None, None),
            ('<config nc:operation="delete"><hostname>x</hostname></config>', "invalid-value",
             None, None, "YFW_ERR_INVALID_ARGS"),
            ('<ntp><servers><server nc:operation="delete"><address>198.51.100.7</address>'
             '</server></servers></ntp>', "data-missing", None, None, None),
        ]
        for body, tag, path, element, app_tag in cases:
            with self.subTest(body=body):
                with self.assertRaises(RPCError) as caught:
                    self.nc.edit_config(target="running", config=config(body))
                error = caught.exception
                self.assertEqual(error.tag, tag)
                if path is not None:
                    self.assertEqual(error.path, path)
                if element is not None:
                    self.assertIn(f"<bad-element>{element}</bad-element>", error.info)
                if app_tag is not None:
                    self.assertIn(app_tag, error.to_dict()["app_tag"])
                self.assertEqual(self.store_bytes(), before)

    def test_get_with_a_subtree_filter_answers_only_what_it_names(self):
        self.nc.edit_config(target="running", config=config(EDITS[0][1] + EDITS[1][1]))
        answer = system_of(self.nc.get(filter=oc_filter("<ntp><servers/></ntp>")))
        server = "oc:ntp/oc:servers/oc:server/"
        self.assertEqual(answer.findtext(server + "oc:config/oc:address", namespaces=NS),
                         "192.0.2.1")
        self.assertEqual(answer.findtext(server + "oc:state/oc:version", namespaces=NS), "4")
        self.assertIsNone(answer.find("oc:config", NS))
        answer = system_of(self.nc.get(filter=oc_filter("<config><hostname/></config>")))
        self.assertEqual([c.tag.split("}")[1] for c in answer], ["config"])
        self.assertEqual(answer.findtext("oc:config/oc:hostname", namespaces=NS), "router-9")

    def test_a_lock_keeps_other_sessions_from_editing_and_test_only_writes_nothing(self):
        other = self.device.connect()
        try:
            self.assertTrue(self.nc.lock(target="running").ok)
            with self.assertRaises(RPCError) as caught:
                other.edit_config(target="running", config=config(EDITS[0][1]))
            self.assertEqual(caught.exception.tag, "in-use")
            with self.assertRaises(RPCError) as caught:
                other.lock(target="running")
            self.assertEqual(caught.exception.tag, "lock-denied")
            self.assertTrue(self.nc.unlock(target="running").ok)
            before = self.store_bytes()
            body = "<config><hostname>only-a-test</hostname></config>"
            self.assertTrue(other.edit_config(target="running", config=config(body),
                                              test_option="test-only").ok)
            self.assertEqual(self.store_bytes(), before)
        finally:
            other.close_session()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
