from ansible_collections.ansible.windows.plugins.plugin_utils.stand_in import StandIn as ActionModule  # noqa: F401
